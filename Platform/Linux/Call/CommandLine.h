#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Engine/Channels.h"
#include "Engine/Value.h"

namespace tapdeck {

/// What one run is asked to do.
struct CommandLine {
  bool help = false;
  bool listen = false;
  std::string channel = kControlChannel;
  std::string method;
  Value arguments;
};

inline constexpr const char* kUsage =
    "Usage: tapdeck call [--channel NAME] METHOD [JSON]\n"
    "       tapdeck call --listen\n"
    "Calls a method of the running host and prints its reply as one line of JSON, or prints what\n"
    "the host sends unasked, a line each. Exit status: 0 replied, 1 the reply is an error, 2 no\n"
    "such method, 3 no answer, 64 wrong usage.\n";

/// Throws std::invalid_argument, with a message for people, for what does not match kUsage.
CommandLine parseCommandLine(const std::vector<std::string>& words);

}  // namespace tapdeck
