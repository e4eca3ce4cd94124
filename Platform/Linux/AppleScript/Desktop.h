#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Linux/AppleScript/Terms.h"

namespace tapdeck::applescript {

/// What a player has loaded. Texts as the player gives them, empty where it gives none.
struct Track {
  std::string title;
  std::string artist;
  std::string album;
  /// The player's own name for it (MPRIS's mpris:trackid).
  std::string id;
  std::string url;
  std::string artUrl;
  /// In microseconds.
  std::optional<int64_t> length;

  bool operator==(const Track&) const = default;
};

/// A player at one moment.
struct PlayerState {
  Constant status = Constant::stopped;
  /// None when it is stopped.
  std::optional<Track> track;
  /// In microseconds from the start of the track.
  int64_t position = 0;
};

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

/// The sound output, as far as it is known.
struct Volume {
  /// 0 to 100.
  std::optional<int> level;
  std::optional<bool> muted;
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
