#pragma once

#include <cstdint>
#include <string>

#include "Platform/Linux/AppleScript/Terms.h"
#include "Platform/Linux/Media/MediaState.h"

namespace tapdeck::applescript {

using media::PlayerState;
using media::Volume;

/// One media player. Every call throws ScriptError when it fails or its reply does not come in
/// time.
class Player {
 public:
  virtual ~Player() = default;
  virtual PlayerState read() = 0;
  /// Any command but those of the machine.
  virtual void perform(Command command) = 0;
  /// Goes to the position, in microseconds from the start of the track.
  virtual void seek(int64_t position) = 0;
};

/// What scripts act upon: players, the sound output, the machine. The language knows no more of
/// them than this interface. Calls throw ScriptError.
class Desktop {
 public:
  virtual ~Desktop() = default;
  /// The application's player, owned by the desktop and the same for as long as that lives; null
  /// when there is none.
  virtual Player* player(Application application) = 0;
  /// Both parts are absent when there is no sound output.
  virtual Volume volume() = 0;
  /// Changes the parts that are present.
  virtual void setVolume(const Volume& volume) = 0;
  /// Requests that the machine sleep, restart or shut down, and does not wait for its reply.
  virtual void power(Command command) = 0;
  /// The bytes of the picture at the address.
  virtual std::string picture(const std::string& url) = 0;
};

}  // namespace tapdeck::applescript
