#pragma once

namespace tapdeck {

/// Claims the X server of the GTK connection for this host, until the process ends or the server
/// is gone: two hosts would press each other's keys and borrow each other's part of the keymap.
/// False when another host has it. Main thread only.
bool claimDisplay();

}  // namespace tapdeck
