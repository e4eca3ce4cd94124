#pragma once

#include "Platform/Linux/AppleScript/Syntax.h"

namespace tapdeck::applescript {

/// Carries out an operator on two values, but `and` and `or`, which may not need the second.
/// Throws ScriptError.
Value operate(BinaryOperator operation, const Value& left, const Value& right);

Value negated(const Value& number);

}  // namespace tapdeck::applescript
