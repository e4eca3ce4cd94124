#include "Runner/Media/Players.h"

#include <algorithm>

#include "Platform/Applications.h"
#include "Runner/Media/PlayerScripts.h"
#include "Runner/Media/Scripts.h"

namespace tapdeck {
namespace {

constexpr const char* kKnownPlayers[] = {"Music", kSpotify, kVlc};
constexpr double kStateTimeLimit = 1.5;

}  // namespace

std::span<const char* const> knownPlayers() {
  return kKnownPlayers;
}

bool isAppRunning(const std::string& name) {
  const auto running = platform::runningApplications();
  return std::any_of(running.begin(), running.end(),
                     [&](const auto& application) { return application.localizedName == name; });
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
  for (const std::string player : knownPlayers()) {
    if (isAppRunning(player) && holds(player)) return player;
  }
  return std::nullopt;
}

}  // namespace tapdeck
