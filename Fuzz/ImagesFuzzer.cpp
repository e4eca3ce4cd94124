// Covers and icons: any bytes that a player, a site or a package calls a picture.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Fuzz/Require.h"
#include "Platform/Images.h"
#include "Runner/Media/Thumbnail.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck;
  const std::vector<uint8_t> bytes(data, data + size);
  const bool isPicture = platform::imageFromData(bytes) != nullptr;
  const auto thumbnail = thumbnailBase64(bytes, 200);
  require(isPicture || !thumbnail, "what is no picture has no thumbnail");
  require(!thumbnail || thumbnail->starts_with("/9j/"), "a thumbnail is a JPEG");
  return 0;
}
