#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Tests/Support/ScriptedDesktop.h"

namespace tapdeck::applescript {

class AppleScriptTest : public ::testing::Test {
 protected:
  /// The result as it is printed; of an error the number in parentheses.
  std::string run(const std::string& source) {
    const Result result = applescript::run(source, desktop);
    if (result.error) return "(" + std::to_string(result.error->number) + ")";
    return result.text.value_or("");
  }

  ScriptedDesktop desktop;
};

}  // namespace tapdeck::applescript
