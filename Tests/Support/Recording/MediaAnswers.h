#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::recording {

/// How a child process behaves.
struct Child {
  std::string output = {};
  int32_t status = 0;
  /// From its start to its end, by the script's clock.
  double seconds = 0;
};

/// What the recording platform answers about child processes, scripts, downloads and covers.
struct Media {
  /// The child for a program's text.
  std::function<Child(const std::string& program)> childFor = [](const auto&) { return Child(); };
  /// What starting a child fails with.
  std::optional<std::string> launchError;
  bool appleScriptFails = false;
  /// What every program that runs in the process fails with.
  std::optional<std::string> appleScriptError;

  std::optional<std::vector<uint8_t>> download;
  double downloadSeconds = 0;
  std::map<std::string, std::vector<uint8_t>> files;
  /// The size of every image; absent makes decoding fail.
  std::optional<CGSize> imageSize;
  std::optional<std::vector<uint8_t>> jpeg;
};

/// Hands over what is still to come of downloads.
void completeDownloads();

}  // namespace tapdeck::recording
