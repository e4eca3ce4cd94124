#include "Runner/Media/PlayerCommands.h"

#include <cstdint>
#include <limits>
#include <string>

#include "Runner/CheckedConversion.h"
#include "Runner/Input/MediaKeys.h"
#include "Runner/Media/Numbers.h"
#include "Runner/Media/PlayerScripts.h"
#include "Runner/Media/Players.h"
#include "Runner/Media/Scripts.h"

namespace tapdeck {
namespace {

void command(const char* command, const char* vlcCommand, MediaKey key) {
  if (const auto player = activePlayingPlayer()) {
    runScriptDetached(commandScript(*player, *player == kVlc ? vlcCommand : command));
  } else {
    postMediaKey(key);
  }
}

std::string wholeSeconds(double position) {
  return std::to_string(fitsInt64(position) ? static_cast<int64_t>(position)
                                            : std::numeric_limits<int64_t>::max());
}

}  // namespace

void mediaPlayPause() {
  command("playpause", "play", MediaKey::playPause);
}

void mediaNext() {
  command("next track", "next", MediaKey::next);
}

void mediaPrevious() {
  command("previous track", "previous", MediaKey::previous);
}

void mediaSeek(double position) {
  const auto player = firstRunningPlayer(hasTrackLoaded);
  if (!player) return;
  // a number that is none is not above 0 either
  const double target = position > 0 ? position : 0.0;
  runScriptDetached(
      commandScript(*player, *player == kVlc ? "set current time to " + wholeSeconds(target)
                                             : "set player position to " + descriptionOf(target)));
}

}  // namespace tapdeck
