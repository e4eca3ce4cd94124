#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/AppleScript/Desktop.h"
#include "Platform/Linux/Media/Bus.h"

namespace tapdeck::applescript {

// The media players of the session bus (MPRIS 2), by the names that the host knows: those of
// Spotify and VLC are theirs, and any other is the desktop's own, "Music".

/// Whether this is the bus name of a player, and not of a program that speaks for one.
bool isPlayer(std::string_view name);

/// The names, each once, of the players that are there. Asks the bus only, so that a player that
/// does not answer takes no time. Any thread.
std::vector<std::string> runningPlayers();

/// The application's player: of several one that plays, else one that is paused. Null when there is
/// none; Music's, which any page of a browser may be, also when it does not play and another
/// application's does. Every call of its is bounded, and once one was not answered the others fail
/// at once.
std::unique_ptr<Player> findPlayer(const Bus& bus, Application application);

}  // namespace tapdeck::applescript
