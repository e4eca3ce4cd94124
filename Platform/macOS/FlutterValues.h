#pragma once

#import <Foundation/Foundation.h>

#include "Engine/Reply.h"
#include "Engine/Value.h"

namespace tapdeck::platform {

// The host's values and the objects of Flutter's standard codec, each way. Any thread.

/// What a call's arguments hold: booleans apart from numbers, integers apart from floating-point
/// numbers. An unsigned integer beyond the signed 64-bit range becomes the nearest double. Nil,
/// NSNull and every object that the codec does not know become null.
Value valueFromFlutter(id _Nullable object);

/// The object that the standard codec writes as this value; nil for null.
id _Nullable flutterFromValue(const Value& value);

/// The object that a FlutterResult takes for this outcome: a FlutterError for an error record,
/// FlutterMethodNotImplemented for the not-implemented reply.
id _Nullable flutterFromOutcome(const Outcome& outcome);

}  // namespace tapdeck::platform
