#pragma once

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// The cursor's visibility on the whole X screen (XFIXES). Hides are counted: as many shows bring
/// the cursor back, and one too many is ignored, which the server itself would take for an error.
class Cursor {
 public:
  explicit Cursor(Connection& connection) : _connection(connection) {}
  ~Cursor() { showAtOnce(); }
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;

  void hide();
  /// Takes back one hide.
  void show();
  /// Takes back every hide.
  void showAtOnce();

 private:
  Connection& _connection;
  uint64_t _hides = 0;
};

}  // namespace tapdeck::x11
