#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tapdeck {

/// What the command line asks of the host.
struct Options {
  enum class Action { run, show, printVersion };
  Action action = Action::run;
  std::string address = "127.0.0.1";
  uint16_t port = 8420;
};

/// Reads the command line. Prints the help and ends the process at "--help"; absent, with a message
/// on standard error, when the line cannot be understood.
std::optional<Options> parseOptions(int argc, char** argv);

}  // namespace tapdeck
