// What the script interpreter prints, from a player that may say anything.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Engine/Utf8.h"
#include "Fuzz/Require.h"
#include "Runner/Media/NowPlaying.h"
#include "Runner/Media/Players.h"
#include "Runner/Media/SystemActions.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck {
namespace {

void check(const ValueMap& info) {
  for (const auto& [key, value] : info) {
    if (const auto* text = value.getIf<std::string>()) require(isUtf8(*text), "texts are UTF-8");
    if (const auto* number = value.getIf<double>()) {
      require(std::isfinite(*number) && *number >= 0, "times are finite and not negative");
    }
  }
  require(!info.find("title")->getIf<std::string>()->empty(), "a track has a title");
  require(!info.find("trackId")->getIf<std::string>()->empty(), "a track has an identity");
}

}  // namespace
}  // namespace tapdeck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck;
  recording::reset();
  recording::script().media.childFor = [&](const std::string&) {
    return recording::Child{.output = std::string(reinterpret_cast<const char*>(data), size)};
  };
  for (const char* player : knownPlayers()) {
    if (const auto info = nowPlayingInfo(player, true)) check(*info);
    isPlayerPlaying(player);
  }
  volumeLevel();
  return 0;
}
