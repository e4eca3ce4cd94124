#include "Platform/Linux/Application/QrCode.h"

#include <qrencode.h>

#include <algorithm>
#include <memory>

namespace tapdeck {

namespace {

/// Modules that must stay light around the code.
constexpr int kQuietZone = 4;

}  // namespace

QrCode::QrCode() {
  set_size_request(208, 208);
}

void QrCode::setText(const std::string& text) {
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
      QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M), QRcode_free);
  _size = code ? code->width : 0;
  _dark.assign(static_cast<std::size_t>(_size) * static_cast<std::size_t>(_size), false);
  for (std::size_t i = 0; i < _dark.size(); ++i) _dark[i] = (code->data[i] & 1) != 0;
  queue_draw();
}

bool QrCode::on_draw(const Cairo::RefPtr<Cairo::Context>& cairo) {
  if (_size == 0) return true;
  const int scale = get_scale_factor();
  const int width = get_allocated_width() * scale;
  const int height = get_allocated_height() * scale;
  const int withZone = _size + 2 * kQuietZone;
  const int module = std::max(1, std::min(width, height) / withZone);
  const int left = (width - module * withZone) / 2;
  const int top = (height - module * withZone) / 2;

  cairo->scale(1.0 / scale, 1.0 / scale);
  cairo->set_antialias(Cairo::ANTIALIAS_NONE);
  cairo->set_source_rgb(1, 1, 1);
  cairo->rectangle(left, top, module * withZone, module * withZone);
  cairo->fill();
  cairo->set_source_rgb(0, 0, 0);
  for (std::size_t i = 0; i < _dark.size(); ++i) {
    if (!_dark[i]) continue;
    const int row = static_cast<int>(i) / _size;
    const int column = static_cast<int>(i) % _size;
    cairo->rectangle(left + (column + kQuietZone) * module, top + (row + kQuietZone) * module,
                     module, module);
  }
  cairo->fill();
  return true;
}

}  // namespace tapdeck
