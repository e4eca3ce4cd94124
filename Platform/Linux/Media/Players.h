#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Linux/Media/Bus.h"
#include "Platform/Linux/Media/MediaError.h"
#include "Platform/Linux/Media/MediaState.h"

namespace tapdeck::media {

// The media players of the session bus (MPRIS 2), by the names that the host knows: those of
// Spotify and VLC are theirs, and any other is the desktop's own, "Music".

enum class PlayerApplication { music, spotify, vlc };

enum class PlayerCommand { next, previous, playPause };

/// One player. Each call waits for its reply for at most a second, and once one was not answered in
/// time the others fail at once. Throws MediaError.
class Player {
 public:
  Player(Bus bus, std::string name) : _bus(std::move(bus)), _name(std::move(name)) {}

  PlayerState read();
  void perform(PlayerCommand command);
  /// Goes to the position, in microseconds from the start of the track, or to its end.
  void seek(int64_t position);

 private:
  glib::Variant call(const char* interface, const char* method, GVariant* arguments,
                     const char* replyType);

  Bus _bus;
  std::string _name;
  /// What the first call that was not answered in time ended with.
  std::optional<MediaError> _timeout;
};

/// Whether this is the bus name of a player, and not of a program that speaks for one.
bool isPlayer(std::string_view name);

/// The names, each once, of the players that are there. Reads the bus's list of names only, so that
/// a player that does not answer takes no time. Any thread.
std::vector<std::string> runningPlayers();

/// The application's player: of several one that plays, else one that is paused. Null when there is
/// none; Music's, which any page of a browser may be, also when it does not play and another
/// application's does.
std::unique_ptr<Player> findPlayer(const Bus& bus, PlayerApplication application);

}  // namespace tapdeck::media
