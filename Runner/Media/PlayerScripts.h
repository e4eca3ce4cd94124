#pragma once

#include <string>

namespace tapdeck {

// The programs that speak to the media players, by the player's name. Lines end in single line
// feeds, the last in none. Any thread.

/// The player whose scripting vocabulary is unlike the others'.
inline constexpr const char* kVlc = "VLC";
inline constexpr const char* kSpotify = "Spotify";

/// Replies "true" when the player is playing, else "false".
std::string stateScript(const std::string& player);

/// Replies "true" when the player has a track, playing or not, else "false".
std::string trackScript(const std::string& player);

/// Replies "none", or name, artist, album, duration, position, state and id, parted by tabs.
std::string nowPlayingScript(const std::string& player);

/// Replies the address of the present track's cover, or nothing.
std::string spotifyArtworkScript();

/// Writes the present track's cover to the file; replies "ok", or "none" when it could not.
std::string artworkScript(const std::string& player, const std::string& path);

/// Has the player do what its command says, such as "playpause".
std::string commandScript(const std::string& player, const std::string& command);

}  // namespace tapdeck
