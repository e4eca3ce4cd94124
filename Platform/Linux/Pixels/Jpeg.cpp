#include "Platform/Linux/Pixels/Jpeg.h"

#include <turbojpeg.h>

namespace tapdeck::pixels {

void JpegEncoder::Destroy::operator()(void* compressor) const {
  tjDestroy(compressor);
}

void JpegEncoder::Free::operator()(uint8_t* bytes) const {
  tjFree(bytes);
}

JpegEncoder::JpegEncoder() : _compressor(tjInitCompress()) {}

std::span<const uint8_t> JpegEncoder::encode(const PixelView& picture, int quality) {
  const unsigned long atMost = tjBufSize(picture.width, picture.height, TJSAMP_420);
  if (_compressor == nullptr || atMost == static_cast<unsigned long>(-1)) return {};
  if (_capacity < atMost) {
    _file.reset(tjAlloc(static_cast<int>(atMost)));
    _capacity = _file != nullptr ? atMost : 0;
    if (_file == nullptr) return {};
  }
  unsigned char* file = _file.get();
  unsigned long size = _capacity;
  const int failed =
      tjCompress2(_compressor.get(), picture.bytes, picture.width,
                  static_cast<int>(picture.bytesPerRow), picture.height, TJPF_BGRX, &file, &size,
                  TJSAMP_420, quality, TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC);
  if (failed != 0) return {};
  return {file, size};
}

}  // namespace tapdeck::pixels
