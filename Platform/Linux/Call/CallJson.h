#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Engine/Reply.h"
#include "Engine/Value.h"

namespace tapdeck {

/// A JSON text as a value: integers stay integers and 3.0 a floating-point number; an integer that
/// 64 bits cannot hold becomes a floating-point number. Objects become maps and arrays lists.
/// Throws std::invalid_argument, with a message for people, for what is no JSON or nests deeper
/// than a message may.
Value valueFromJson(const std::string& text);

/// A value as JSON: byte lists become {"base64": "..."}, other lists arrays, maps objects (a key
/// that is no string takes its textual form, such as "7" or "null"), numbers that JSON does not
/// have null.
nlohmann::ordered_json jsonFromValue(const Value& value);

/// The reply's value, or {"error": {"code", "message", "details"}}, or {"notImplemented": true}.
nlohmann::ordered_json jsonFromOutcome(const Outcome& outcome);

/// JSON on one line.
std::string lineOf(const nlohmann::ordered_json& json);

}  // namespace tapdeck
