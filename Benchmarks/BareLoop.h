#pragma once

#include <utility>

#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Platform/Linux/Pixels/Jpeg.h"
#include "Platform/Linux/X11/Capture/ScreenGrab.h"
#include "Platform/Linux/X11/Connection.h"
#include "Runner/Display/FrameComparison.h"

namespace tapdeck::benchmarks {

/// The floor: what one frame needs at the least, done by the same code and nothing round it.
class BareLoop {
 public:
  BareLoop(int screenWidth, int screenHeight, int width, int height)
      : _screen{0, 0, screenWidth, screenHeight},
        _whole{0, 0, width, height},
        _grab(_connection),
        _scaler({screenWidth, screenHeight}, {width, height}),
        _current(allocate()),
        _previous(allocate()) {}

  void grab() { _picture = _grab.grab(_screen); }
  void scale() { _scaler.scale(_picture.view(), _current, _whole); }
  bool isChanged() const {
    const FrameLayout layout{static_cast<size_t>(_current.width) * 4, _current.bytesPerRow,
                             static_cast<size_t>(_current.height)};
    return framesDiffer(_current.memory.get(), _previous.memory.get(), layout);
  }
  void encode(int quality) { _size = _encoder.encode(_current.view(), quality).size(); }

  /// All of it; whether the frame was another than the one before.
  bool frame(int quality) {
    _picture = {};
    grab();
    scale();
    if (!isChanged()) return false;
    encode(quality);
    std::swap(_current, _previous);
    return true;
  }

  const pixels::PixelBuffer& current() const { return _current; }
  /// Of the last frame encoded, in bytes.
  size_t size() const { return _size; }

 private:
  pixels::PixelBuffer allocate() const {
    return pixels::allocatePixels(_whole.width, _whole.height,
                                  pixels::alignedBytesPerRow(_whole.width));
  }

  x11::Connection _connection;
  pixels::Area _screen;
  pixels::Area _whole;
  x11::ScreenGrab _grab;
  pixels::AreaScaler _scaler;
  pixels::JpegEncoder _encoder;
  pixels::PixelBuffer _picture;
  pixels::PixelBuffer _current;
  pixels::PixelBuffer _previous;
  size_t _size = 0;
};

}  // namespace tapdeck::benchmarks
