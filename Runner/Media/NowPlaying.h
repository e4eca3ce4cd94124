#pragma once

#include <optional>
#include <string>

#include "Engine/Value.h"

namespace tapdeck {

// Any thread but the main one: each player is waited for up to 2.0 s, its artwork up to 3.5 s.

/// What the first known player that is running and has something loaded is at, playing or paused,
/// as a map; null when there is none.
Value nowPlaying(bool includeArt);

/// The same of one player.
std::optional<ValueMap> nowPlayingInfo(const std::string& player, bool includeArt);

}  // namespace tapdeck
