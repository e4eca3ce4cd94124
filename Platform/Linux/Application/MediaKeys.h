#pragma once

#include "Platform/Linux/Media/RecentPlayer.h"

namespace tapdeck {

/// While it lives, a media key that no program has grabbed controls the media player that plays, or
/// else the one that played last; without a player it stays a key. After connectToWindowServer,
/// main thread.
class MediaKeys {
 public:
  MediaKeys();
  ~MediaKeys();
  MediaKeys(const MediaKeys&) = delete;
  MediaKeys& operator=(const MediaKeys&) = delete;

 private:
  media::RecentPlayer _player;
};

}  // namespace tapdeck
