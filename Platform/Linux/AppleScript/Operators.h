#pragma once

#include "Platform/Linux/AppleScript/Syntax.h"

namespace tapdeck::applescript {

/// Carries out an operator on two values. Throws ScriptError.
Value operate(BinaryOperator operation, const Value& left, const Value& right);

}  // namespace tapdeck::applescript
