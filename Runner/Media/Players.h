#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

namespace tapdeck {

/// The names by which the media players are known to the system and addressed in scripts, the most
/// important first. Any thread, as all of this.
std::span<const char* const> knownPlayers();

/// Whether an application of exactly this localized name is running.
bool isAppRunning(const std::string& name);

/// Whether the player says that it is playing; false when it does not answer within 1.5 s.
bool isPlayerPlaying(const std::string& player);

/// The first known player that is running and playing.
std::optional<std::string> activePlayingPlayer();

/// Whether the player says that it has a track, playing or not; false when it does not answer
/// within 1.5 s.
bool hasTrackLoaded(const std::string& player);

/// The first known player that is running and for which `holds`.
std::optional<std::string> firstRunningPlayer(
    const std::function<bool(const std::string& player)>& holds);

}  // namespace tapdeck
