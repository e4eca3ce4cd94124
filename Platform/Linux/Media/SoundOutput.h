#pragma once

#include "Platform/Linux/AppleScript/Desktop.h"

namespace tapdeck::applescript {

// The default output of the sound server (PulseAudio, or PipeWire in its place). Waits for the
// server for a second at the most, and starts none.

/// Of several channels the loudest. Both parts are absent when there is no server or no output.
Volume soundOutputVolume();

/// Changes what is present, but an output that is above 100 stays there when it is to be at 100,
/// which is how it reads; between the channels the balance stays. Throws ScriptError.
void setSoundOutputVolume(const Volume& volume);

}  // namespace tapdeck::applescript
