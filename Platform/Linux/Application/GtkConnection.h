#pragma once

namespace tapdeck {

/// Connects GTK to the X server of $DISPLAY. Should the server go away later, the process ends at
/// once with a message, exit status 1 and its session file removed. Throws
/// x11::WindowServerError.
void connectGtk();

}  // namespace tapdeck
