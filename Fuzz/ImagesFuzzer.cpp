// Covers and icons: any bytes that a player, a site or a package calls a picture.

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <vector>

#include "Fuzz/Require.h"
#include "Platform/Images.h"
#include "Platform/Linux/Fronts/PictureDecoding.h"
#include "Runner/Media/Thumbnail.h"
#include "Tests/Support/Surroundings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck;
  const std::vector<uint8_t> bytes(data, data + size);
  const bool isPicture = platform::imageFromData(bytes) != nullptr;
  const auto thumbnail = thumbnailBase64(bytes, 200);
  require(isPicture || !thumbnail, "what is no picture has no thumbnail");
  require(!thumbnail || thumbnail->starts_with("/9j/"), "a thumbnail is a JPEG");

  static const TemporaryFolder folder;
  const std::string file = folder.path / "icon";
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  const auto icon = platform::decodeIconFile(file, 64);
  require(!icon || int64_t{gdk_pixbuf_get_width(icon.get())} * gdk_pixbuf_get_height(icon.get()) <=
                       40'000'000,
          "an icon is no larger than a picture may be");
  return 0;
}
