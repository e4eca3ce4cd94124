#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Engine/MethodCall.h"
#include "Engine/Reply.h"
#include "Engine/StandardFormat.h"
#include "Engine/Value.h"

namespace tapdeck::codec {

/// The standard message and method codec of the UI engine's platform channels, byte for byte.
/// Stateless and safe on any thread. A message that is cut short, goes on too long, nests deeper
/// than `kDepthLimit` lists and maps, holds text that is not UTF-8 or names an unknown type decodes
/// to nothing. Encoding knows no depth limit; it throws std::length_error for what is too long to
/// have an encoding (4 Gi elements). Of equal keys in a map the last one's value counts.
using Bytes = std::vector<uint8_t>;

Bytes encodeMessage(const Value& value);
std::optional<Value> decodeMessage(std::span<const uint8_t> message);

Bytes encodeMethodCall(const MethodCall& call);
std::optional<MethodCall> decodeMethodCall(std::span<const uint8_t> message);

/// The envelope of an outcome; the not-implemented reply has none (it is a null payload).
std::optional<Bytes> encodeEnvelope(const Outcome& outcome);
/// The outcome in an envelope; a null payload is the not-implemented reply.
std::optional<Outcome> decodeEnvelope(std::optional<std::span<const uint8_t>> envelope);

}  // namespace tapdeck::codec
