#pragma once

#include <cstdint>
#include <functional>

namespace tapdeck::x11 {

/// Opens the connection to the X server of $DISPLAY and checks the extensions that the host needs
/// (XTEST, XFIXES, RANDR 1.5). Until this is called, everything of Quartz behaves as if the server
/// were gone. A further call releases what is pressed, closes the connection and opens another,
/// without the observers of the first. Main thread, as all of this. Throws WindowServerError.
void connectToWindowServer();

/// Calls `changed` after the list of monitors or the scale changed, once per change, from the GLib
/// main loop.
void observeMonitors(std::function<void()> changed);

/// From now on a media key (NX_KEYTYPE_) that is posted while no program has grabbed it goes to
/// `take` first, on the main thread; where that answers that it has taken the key, the server does
/// not get it. Null ends it.
void offerMediaKeys(std::function<bool(uint32_t keyType)> take);

/// Whether a button's press that was posted still waits to be sent, as it does for some
/// milliseconds after the last one.
bool isPressWaiting();

/// Releases every key and button that events posted here still hold pressed, and shows the cursor.
/// Returns when the server has done so. The end of the process by exit does it too.
void releaseEverything();

}  // namespace tapdeck::x11
