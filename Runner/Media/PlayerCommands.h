#pragma once

namespace tapdeck {

// Each goes to the player that is playing, or, when none is, to whoever hears the media keys. Asks
// every running player for up to 1.5 s. Main thread only.
void mediaPlayPause();
void mediaNext();
void mediaPrevious();

/// Sets the position, in seconds from the track's start, of the first player that has a track; does
/// nothing when none has. What is below 0 or no number becomes 0. Any thread.
void mediaSeek(double position);

}  // namespace tapdeck
