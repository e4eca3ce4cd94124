#include "Platform/Linux/AppleScript/AppleScript.h"

#include <utility>

#include "Platform/Linux/AppleScript/Evaluator.h"
#include "Platform/Linux/AppleScript/Parser.h"

namespace tapdeck::applescript {
namespace {

Error describe(ScriptError&& error) {
  return {.number = error.number,
          .message = std::move(error.message),
          .application = std::move(error.application),
          .start = error.start,
          .end = error.end,
          .isSyntaxError = error.number == kSyntax};
}

}  // namespace

Result run(const std::string& source, Desktop& desktop) {
  try {
    const Value value = Evaluator(desktop).run(parse(source));
    if (value.getIf<Nothing>() != nullptr) return {};
    return {.text = display(value), .error = std::nullopt};
  } catch (ScriptError& error) {
    return {.text = std::nullopt, .error = describe(std::move(error))};
  }
}

}  // namespace tapdeck::applescript
