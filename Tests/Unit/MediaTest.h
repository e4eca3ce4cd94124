#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Tests/Unit/HostTest.h"

namespace tapdeck {

/// Players that run and answer as a test says, on the recording platform.
class MediaTest : public HostTest {
 protected:
  using Child = recording::Child;

  MediaTest() {
    script().media.childFor = [this](const std::string& program) {
      const auto found = answers.find({questionOf(program), playerOf(program)});
      return found != answers.end() ? found->second : Child();
    };
  }

  static void run(const std::vector<std::string>& names) {
    script().applications.running.clear();
    for (const std::string& name : names) {
      script().applications.running.push_back(
          {platform::ActivationPolicy::regular, std::nullopt, name, 1});
    }
  }

  /// The trace, in which a program that is waited for is told by its question and its player, and
  /// polls stand once for as often as they come.
  static Trace steps() {
    Trace told;
    for (std::string line : trace()) {
      const std::string start = "start /usr/bin/osascript -e ";
      if (line.starts_with(start) && line.ends_with(" > pipe 2> pipe")) {
        const std::string program = line.substr(start.size());
        line = questionOf(program) + " " + playerOf(program);
      }
      if (line == "sleep 20000") line = "poll";
      if (line != "poll" || told.empty() || told.back() != "poll") told.push_back(line);
    }
    return told;
  }

  /// By question ("state", "track", "info", "art") and player; any other child writes nothing.
  std::map<std::pair<std::string, std::string>, Child> answers;

 private:
  static std::string questionOf(const std::string& program) {
    const auto has = [&](const char* words) { return program.find(words) != std::string::npos; };
    if (has("artwork")) return "art";
    if (has("pstate") || has("path of i")) return "info";
    if (has("playing then return")) return "state";
    return has("current") ? "track" : "command";
  }
  static std::string playerOf(const std::string& program) {
    const size_t start = program.find('"') + 1;
    return program.substr(start, program.find('"', start) - start);
  }
};

}  // namespace tapdeck
