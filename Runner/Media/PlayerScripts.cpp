#include "Runner/Media/PlayerScripts.h"

namespace tapdeck {
namespace {

std::string tell(const std::string& player) {
  return "tell application \"" + player + "\"";
}

constexpr const char* kVlcState = R"(
  try
    if playing then return "true"
  end try
end tell
return "false")";

constexpr const char* kState = R"(
  try
    if player state is playing then return "true"
  end try
end tell
return "false")";

constexpr const char* kVlcTrack = R"(
  try
    if (exists current item) then return "true"
  end try
end tell
return "false")";

constexpr const char* kTrack = R"(
  try
    get name of current track
    return "true"
  on error
    return "false"
  end try
end tell)";

constexpr const char* kSpotifyNowPlaying = R"(
  try
    if player state is stopped then return "none"
    set t to current track
    set pstate to "paused"
    if player state is playing then set pstate to "playing"
    return (name of t) & tab & (artist of t) & tab & (album of t) & tab ¬
      & ((duration of t) as text) & tab & ((player position) as text) & tab ¬
      & pstate & tab & (id of t as text)
  on error
    return "none"
  end try
end tell)";

constexpr const char* kVlcNowPlaying = R"(
  try
    if not (exists current item) then return "none"
    set i to current item
    return (name of i) & tab & "" & tab & "" & tab ¬
      & ((duration of i) as text) & tab & ((current time) as text) & tab ¬
      & ((playing) as text) & tab & (path of i as text)
  on error
    return "none"
  end try
end tell)";

constexpr const char* kNowPlaying = R"(
  try
    set t to current track
    set n to name of t
  on error
    return "none"
  end try
  set ar to ""
  set al to ""
  set dur to 0
  set p to 0
  set tid to ""
  try
    set ar to artist of t
  end try
  try
    set al to album of t
  end try
  try
    set dur to duration of t
  end try
  try
    set p to player position
  end try
  try
    set tid to persistent ID of t as text
  end try
  set pstate to "paused"
  try
    if player state is playing then set pstate to "playing"
  end try
  return n & tab & ar & tab & al & tab & (dur as text) & tab ¬
    & (p as text) & tab & pstate & tab & tid
end tell)";

constexpr const char* kSpotifyArtwork = R"(
  try
    return artwork url of current track
  on error
    return ""
  end try
end tell)";

constexpr const char* kArtworkData = R"(
  try
    set d to raw data of artwork 1 of current track
  on error
    return "none"
  end try
end tell
try
  set f to open for access POSIX file ")";

constexpr const char* kArtworkWriting = R"(" with write permission
  set eof f to 0
  write d to f
  close access f
  return "ok"
on error
  try
    close access POSIX file ")";

constexpr const char* kArtworkEnd = R"("
  end try
  return "none"
end try)";

}  // namespace

std::string stateScript(const std::string& player) {
  return tell(player) + (player == kVlc ? kVlcState : kState);
}

std::string trackScript(const std::string& player) {
  return tell(player) + (player == kVlc ? kVlcTrack : kTrack);
}

std::string nowPlayingScript(const std::string& player) {
  if (player == kSpotify) return tell(player) + kSpotifyNowPlaying;
  return tell(player) + (player == kVlc ? kVlcNowPlaying : kNowPlaying);
}

std::string spotifyArtworkScript() {
  return tell(kSpotify) + kSpotifyArtwork;
}

std::string artworkScript(const std::string& player, const std::string& path) {
  return tell(player) + kArtworkData + path + kArtworkWriting + path + kArtworkEnd;
}

std::string commandScript(const std::string& player, const std::string& command) {
  return tell(player) + " to " + command;
}

}  // namespace tapdeck
