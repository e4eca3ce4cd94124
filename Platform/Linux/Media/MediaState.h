#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tapdeck::media {

// What players and the sound output say of themselves. Plain data.

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
};

enum class PlaybackStatus { playing, paused, stopped };

/// A player at one moment.
struct PlayerState {
  PlaybackStatus status = PlaybackStatus::stopped;
  /// None when it is stopped.
  std::optional<Track> track;
  /// In microseconds from the start of the track.
  int64_t position = 0;
};

/// The sound output, as far as it is known.
struct Volume {
  /// 0 to 100.
  std::optional<int> level;
  std::optional<bool> muted;
};

}  // namespace tapdeck::media
