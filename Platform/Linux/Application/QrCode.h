#pragma once

#include <gtkmm/drawingarea.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tapdeck {

/// A text's QR code: dark on light with its quiet zone, whatever the theme, each module a whole
/// number of the screen's pixels.
class QrCode : public Gtk::DrawingArea {
 public:
  QrCode();
  /// Shows this text; nothing when it is too long for a code.
  void setText(const std::string& text);

 private:
  bool on_draw(const Cairo::RefPtr<Cairo::Context>& cairo) override;

  /// Modules per side and, row by row, which of them are dark.
  int _size = 0;
  std::vector<bool> _dark;
};

}  // namespace tapdeck
