#pragma once

#include <optional>

namespace tapdeck::media {

// The default output of the sound server (PulseAudio, or PipeWire in its place). Waits for the
// server for a second at the most, and starts none.

/// The sound output, as far as it is known.
struct Volume {
  /// 0 to 100.
  std::optional<int> level;
  std::optional<bool> muted;
};

/// Of several channels the loudest. Both parts are absent when there is no server or no output.
Volume soundOutputVolume();

/// Changes the parts that are present. A level of 100 leaves an output that is above 100 where it
/// is, because that too reads as 100; the balance between the channels stays. Throws MediaError.
void setSoundOutputVolume(const Volume& volume);

}  // namespace tapdeck::media
