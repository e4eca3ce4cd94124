#include "Platform/Linux/Application/QrCode.h"

#include <algorithm>

namespace tapdeck {

QrCode::QrCode() {
  set_size_request(208, 208);
}

void QrCode::setText(const std::string& text) {
  _code = qrMatrixOf(text);
  queue_draw();
}

bool QrCode::on_draw(const Cairo::RefPtr<Cairo::Context>& cairo) {
  if (_code.size == 0) return true;
  const int scale = get_scale_factor();
  const int width = get_allocated_width() * scale;
  const int height = get_allocated_height() * scale;
  const int withZone = _code.size + 2 * QrMatrix::kQuietZone;
  const int module = std::max(1, std::min(width, height) / withZone);
  const int left = (width - module * withZone) / 2;
  const int top = (height - module * withZone) / 2;

  cairo->scale(1.0 / scale, 1.0 / scale);
  cairo->set_antialias(Cairo::ANTIALIAS_NONE);
  cairo->set_source_rgb(1, 1, 1);
  cairo->rectangle(left, top, module * withZone, module * withZone);
  cairo->fill();
  cairo->set_source_rgb(0, 0, 0);
  for (int row = 0; row < _code.size; ++row) {
    for (int column = 0; column < _code.size; ++column) {
      if (!_code.isDark(column, row)) continue;
      cairo->rectangle(left + (column + QrMatrix::kQuietZone) * module,
                       top + (row + QrMatrix::kQuietZone) * module, module, module);
    }
  }
  cairo->fill();
  return true;
}

}  // namespace tapdeck
