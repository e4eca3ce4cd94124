#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tapdeck {

/// The user's settings of the switches in the window.
inline constexpr const char* kAllowNetwork = "allowNetwork";
inline constexpr const char* kEncryptNetwork = "encryptNetwork";
inline constexpr const char* kThisComputer = "127.0.0.1";
inline constexpr const char* kEveryAddress = "0.0.0.0";

/// What the command line asks of the host.
struct Options {
  enum class Action { run, show, printVersion };
  Action action = Action::run;
  /// Absent for what the user last chose in the window.
  std::optional<std::string> address;
  uint16_t port = 8420;
  /// Encrypt the network's connections; else what the user last chose.
  bool isEncrypted = false;
};

/// Reads the command line. Prints the help and ends the process at "--help"; absent, with a message
/// on standard error, when the line cannot be understood.
std::optional<Options> parseOptions(int argc, char** argv);

}  // namespace tapdeck
