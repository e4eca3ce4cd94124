#pragma once

namespace tapdeck {

// The user's permission to capture the screen. Nothing is stored: each call asks the system.
// Main thread only.

/// Whether it is granted; never prompts.
bool screenRecordingGranted();

/// Whether it is granted; the system may prompt when it is not.
bool requestScreenRecording();

/// Opens the Screen Recording pane of the system's settings.
void openScreenRecordingSettings();

}  // namespace tapdeck
