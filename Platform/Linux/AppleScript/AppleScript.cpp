#include "Platform/Linux/AppleScript/AppleScript.h"

#include <utility>

#include "Platform/Linux/AppleScript/Evaluator.h"
#include "Platform/Linux/AppleScript/Parser.h"
#include "Platform/Linux/AppleScript/Run.h"
#include "Platform/Linux/AppleScript/SystemDesktop.h"

namespace tapdeck::applescript {
namespace {

Error describe(ScriptError&& error, bool isSyntaxError) {
  return {.number = error.number,
          .message = std::move(error.message),
          .application = std::move(error.application),
          .start = error.start,
          .end = error.end,
          .isSyntaxError = isSyntaxError};
}

}  // namespace

Result run(const std::string& source, Desktop& desktop) {
  Block program;
  try {
    program = parse(source);
  } catch (ScriptError& error) {
    return {.text = std::nullopt, .error = describe(std::move(error), true)};
  }
  try {
    const Value value = Evaluator(desktop).run(program);
    if (value.getIf<Nothing>() != nullptr) return {};
    return {.text = display(value), .error = std::nullopt};
  } catch (ScriptError& error) {
    return {.text = std::nullopt, .error = describe(std::move(error), false)};
  }
}

Result run(const std::string& source) {
  SystemDesktop desktop;
  return run(source, desktop);
}

}  // namespace tapdeck::applescript
