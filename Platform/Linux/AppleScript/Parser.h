#pragma once

#include <string_view>

#include "Platform/Linux/AppleScript/Syntax.h"

namespace tapdeck::applescript {

/// Compiles the source, UTF-8. Throws ScriptError: -2741 for what this interpreter does not know,
/// such as a word that is neither a term of the application that is told nor a variable that was
/// set before; -1728 for an application that is unknown; -2706 for a program that is too large.
Block parse(std::string_view source);

}  // namespace tapdeck::applescript
