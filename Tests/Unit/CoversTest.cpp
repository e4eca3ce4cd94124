// Downloads, files and thumbnails on the real platform.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "Platform/Files.h"
#include "Platform/Images.h"
#include "Runner/Media/Download.h"
#include "Runner/Media/Thumbnail.h"
#include "Tests/Support/CoverServer.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Downloads on another thread while the server is served by this one.
std::optional<Bytes> get(const std::string& address) {
  std::optional<Bytes> data;
  std::atomic<bool> isDone = false;
  std::thread thread([&] {
    data = downloadData({address});
    isDone = true;
  });
  EXPECT_TRUE(eventually([&] { return isDone.load(); }));
  thread.join();
  return data;
}

TEST(CoversTest, DownloadsWhateverArrivesInTime) {
  const CoverServer server;
  EXPECT_EQ(get(server.address("/cover")), bytesOf("cover"));
  EXPECT_EQ(get(server.address("/missing")), bytesOf("cover"));
  EXPECT_EQ(get(server.address("/endless")), std::nullopt);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(get(server.address("/hangs")), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(downloadData({"http://127.0.0.1:1/"}), std::nullopt);
}

/// A picture of one colour.
Bytes pictureOf(int64_t width, int64_t height) {
  const auto bitmap = platform::createBitmap(width, height);
  const auto dot = platform::imageFromData(bytesOf("P6 1 1 255\n\x20\x80\xE0"));
  platform::copyOnto(*bitmap, *dot, CGRectMake(0, 0, 0, 0));
  return platform::pngOf(*bitmap, 1).value();
}

/// What the thumbnail is, once decoded.
CGSize thumbnailSize(const Bytes& picture) {
  const auto text = thumbnailBase64(picture, 200);
  if (!text) return {0, 0};
  gsize size = 0;
  guchar* jpeg = g_base64_decode(text->c_str(), &size);
  const Bytes bytes(jpeg, jpeg + size);
  g_free(jpeg);
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 3), (Bytes{0xFF, 0xD8, 0xFF}));
  return platform::sizeOf(*platform::imageFromData(bytes));
}

TEST(CoversTest, ThumbnailsAreJpegOfTheRightSize) {
  const CGSize size = thumbnailSize(pictureOf(1000, 2));
  EXPECT_EQ(size.width, 200);
  EXPECT_EQ(size.height, 1);
}

TEST(CoversTest, WhatIsNoPictureGivesNone) {
  // a picture, but one that takes more memory than any cover is worth
  Bytes huge = bytesOf("P6 7000 6000 255\n");
  huge.resize(huge.size() + size_t{7000} * 6000 * 3);
  EXPECT_EQ(thumbnailBase64({}, 200), std::nullopt);
  EXPECT_EQ(thumbnailBase64(bytesOf("<html>not found</html>"), 200), std::nullopt);
  EXPECT_EQ(thumbnailBase64(huge, 200), std::nullopt);
}

TEST(CoversTest, FilesAreReadWhereTheyAreFiles) {
  const TemporaryFolder folder;
  const std::string cover = folder.path / "cover";
  const std::string pipe = folder.path / "pipe";
  std::ofstream(cover) << std::string("a\0b", 3);
  mkfifo(pipe.c_str(), 0600);
  EXPECT_EQ(platform::contentsAtPath(cover), bytesOf(std::string_view("a\0b", 3)));
  EXPECT_EQ(platform::contentsAtPath(pipe), std::nullopt);
  EXPECT_EQ(platform::contentsAtPath(folder.path), std::nullopt);
  platform::removeItem(cover);
  EXPECT_EQ(platform::contentsAtPath(cover), std::nullopt);
}

}  // namespace
}  // namespace tapdeck
