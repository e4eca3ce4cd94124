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
