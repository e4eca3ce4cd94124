#include "Runner/Media/Players.h"

#include <algorithm>
#include <vector>

#include "Platform/Applications.h"
#include "Runner/Media/PlayerScripts.h"
#include "Runner/Media/Scripts.h"

namespace tapdeck {
namespace {

constexpr const char* kKnownPlayers[] = {"Music", kSpotify, kVlc};
constexpr double kStateTimeLimit = 1.5;

bool isAmong(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::span<const char* const> knownPlayers() {
  return kKnownPlayers;
}

bool isAppRunning(const std::string& name) {
  return isAmong(platform::runningApplicationNames(), name);
}

bool isPlayerPlaying(const std::string& player) {
  return runScriptBounded(stateScript(player), kStateTimeLimit) == "true";
}

std::optional<std::string> activePlayingPlayer() {
  return firstRunningPlayer(isPlayerPlaying);
}

bool hasTrackLoaded(const std::string& player) {
  return runScriptBounded(trackScript(player), kStateTimeLimit) == "true";
}

std::optional<std::string> firstRunningPlayer(
    const std::function<bool(const std::string& player)>& holds) {
  const auto running = platform::runningApplicationNames();
  bool hasAsked = false;
  for (const std::string player : knownPlayers()) {
    if (!isAmong(running, player)) continue;
    // it may have ended while another was asked, and a program that addresses it would start it
    if (hasAsked && !isAppRunning(player)) continue;
    if (holds(player)) return player;
    hasAsked = true;
  }
  return std::nullopt;
}

}  // namespace tapdeck
