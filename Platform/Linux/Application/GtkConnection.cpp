#include "Platform/Linux/Application/GtkConnection.h"

#include <X11/Xlib.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <cstdlib>

#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/X11/WindowServerError.h"

namespace tapdeck {

namespace {

/// Nothing that talks to the X server can be done any more; what lies in the file system can.
int dieWithServer(Display*) noexcept {
  removeSession(getpid());
  warn("the X server has ended the connection, and the host ends with it.");
  _exit(EXIT_FAILURE);
}

}  // namespace

void connectGtk() {
  // What the host does it does through X11, also where a desktop offers Wayland beside it.
  gdk_set_allowed_backends("x11");
  if (!gtk_init_check(nullptr, nullptr)) {
    throw x11::WindowServerError(
        "GTK cannot use the X server of $DISPLAY; is GDK_BACKEND set to something else than x11?");
  }
  XSetIOErrorHandler(dieWithServer);
}

}  // namespace tapdeck
