#pragma once

#include <gtkmm/drawingarea.h>

#include <string>

#include "Platform/Linux/Application/QrMatrix.h"

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

  QrMatrix _code;
};

}  // namespace tapdeck
