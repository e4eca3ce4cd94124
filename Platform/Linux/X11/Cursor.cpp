#include "Platform/Linux/X11/Cursor.h"

#include <xcb/xfixes.h>

namespace tapdeck::x11 {

void Cursor::hide() {
  if (_hides++ > 0) return;
  xcb_xfixes_hide_cursor(_connection.get(), _connection.root());
  _connection.flush();
}

void Cursor::show() {
  if (_hides == 0 || --_hides > 0) return;
  xcb_xfixes_show_cursor(_connection.get(), _connection.root());
  _connection.flush();
}

void Cursor::showAtOnce() {
  if (_hides == 0) return;
  _hides = 1;
  show();
}

}  // namespace tapdeck::x11
