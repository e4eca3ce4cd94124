#pragma once

namespace tapdeck {

/// The system's media keys, by their auxiliary-control key types (NX_KEYTYPE_).
enum class MediaKey { playPause = 16, next = 17, previous = 18 };

/// Presses and releases a media key, 10 ms apart, as system-defined events at the HID tap; blocks
/// for that long. What cannot be created is left out silently. Main thread only.
void postMediaKey(MediaKey key);

}  // namespace tapdeck
