#pragma once

#include "Platform/Linux/Media/MediaState.h"

namespace tapdeck::media {

// The default output of the sound server (PulseAudio, or PipeWire in its place). Waits for the
// server for a second at the most, and starts none.

/// Of several channels the loudest. Both parts are absent when there is no server or no output.
Volume soundOutputVolume();

/// Changes the parts that are present. A level of 100 leaves an output that is above 100 where it
/// is, because that too reads as 100; the balance between the channels stays. Throws MediaError.
void setSoundOutputVolume(const Volume& volume);

}  // namespace tapdeck::media
