#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>
#include <turbojpeg.h>

#include <chrono>
#include <cstring>
#include <future>
#include <random>

#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Display/ScreenCapture.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Desktop/PrivateServer.h"
#include "Tests/Support/Desktop/ScreenPainter.h"
#include "Tests/Support/Seed.h"

namespace tapdeck::testing {
namespace {

using permissions::Permission;
using Pixels = std::vector<uint32_t>;

Owned<CGImageRef> capture(CGDirectDisplayID display) {
  return Owned(CGDisplayCreateImage(display));
}

Owned<CGContextRef> draw(CGImageRef image, size_t width, size_t height) {
  const Owned space(CGColorSpaceCreateDeviceRGB());
  Owned context(
      CGBitmapContextCreate(nullptr, width, height, 8, 0, space.get(),
                            uint32_t{kCGBitmapByteOrder32Little} | kCGImageAlphaNoneSkipFirst));
  CGContextSetInterpolationQuality(context.get(), kCGInterpolationLow);
  CGContextDrawImage(context.get(),
                     CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height)),
                     image);
  return context;
}

/// The rows without their padding.
Pixels tight(const void* rows, size_t bytesPerRow, size_t width, size_t height) {
  Pixels pixels(width * height);
  for (size_t y = 0; y < height; ++y) {
    std::memcpy(&pixels[y * width], static_cast<const uint8_t*>(rows) + y * bytesPerRow, width * 4);
  }
  return pixels;
}

Pixels drawn(CGImageRef image, size_t width, size_t height) {
  const auto context = draw(image, width, height);
  return tight(CGBitmapContextGetData(context.get()), CGBitmapContextGetBytesPerRow(context.get()),
               width, height);
}

Pixels pixelsOf(CGImageRef image) {
  return drawn(image, CGImageGetWidth(image), CGImageGetHeight(image));
}

Pixels scaled(const Pixels& pixels, const x11::Monitor& monitor, int width, int height) {
  const auto target = pixels::allocatePixels(width, height, pixels::alignedBytesPerRow(width));
  const pixels::PixelView source{reinterpret_cast<const uint8_t*>(pixels.data()), monitor.width,
                                 monitor.height, size_t{4} * monitor.width};
  pixels::AreaScaler({monitor.width, monitor.height}, {width, height})
      .scale(source, target, {0, 0, width, height});
  return tight(target.memory.get(), target.bytesPerRow, target.width, target.height);
}

/// Captures and draws like the host, while `painter` changes the screen, and compares with the
/// screen itself.
class Comparison {
 public:
  explicit Comparison(unsigned seed) : _painter(seed), _random(seed) {}

  void run(int changes) {
    for (int made = 0; made < changes && !::testing::Test::HasFailure();) {
      const int batch = 1 + static_cast<int>(_random() % 8);
      const auto painting = std::async(std::launch::async, [this, batch] {
        for (int i = 0; i < batch; ++i) _painter.change();
        _painter.finish();
      });
      // amid the changes; what comes too late for one capture the next has to tell
      while (painting.wait_for(std::chrono::seconds(0)) != std::future_status::ready) check(false);
      check(true);
      made += batch;
    }
  }

 private:
  void check(bool isStill) {
    const auto monitors = x11::monitors();
    const x11::Monitor& monitor = monitors[_random() % monitors.size()];
    const auto image = capture(monitor.number);
    ASSERT_TRUE(image);
    const int width = monitor.width * 5 / 9;
    const int height = monitor.height * 5 / 9;
    const Pixels small = drawn(image.get(), width, height);
    // one that somebody holds stays as it is
    if (_held) {
      ASSERT_TRUE(pixelsOf(_held.get()) == _heldPixels);
    }
    if (_random() % 8 == 0) _held = Owned<CGImageRef>(nullptr);
    if (!isStill) return;
    const Pixels shown = _painter.pixels(monitor.x, monitor.y, monitor.width, monitor.height);
    ASSERT_TRUE(pixelsOf(image.get()) == shown);
    ASSERT_TRUE(small == scaled(shown, monitor, width, height));
    if (_random() % 64 != 0) return;
    CFRetain(image.get());
    _held = Owned(image.get());
    _heldPixels = shown;
  }

  ScreenPainter _painter;
  std::mt19937 _random;
  Owned<CGImageRef> _held{nullptr};
  Pixels _heldPixels;
};

void expectNoChangeMissed(const std::vector<std::string>& serverOptions, int changes,
                          const std::string& host = {}) {
  const PrivateServer server(serverOptions);
  const DisplayVariable variable((host + server.display()).c_str());
  x11::connectToWindowServer();
  Observer observer;
  observer.setMonitor("Left", "251/60x300/80+0+0", "screen");
  observer.setMonitor("Right", "149/40x257/60+251+43");
  Comparison(testSeed()).run(changes);
}

TEST(ImagesTest, MissNoChange) {
  expectNoChangeMissed({"-screen", "0", "400x300x24"}, 10000);
}

TEST(ImagesTest, WorkOnEveryServer) {
  const std::vector<std::string> servers[] = {
      {"-screen", "0", "400x300x30"},
      {"-screen", "0", "400x300x24", "-extension", "DAMAGE"},
      {"-screen", "0", "400x300x24", "-extension", "MIT-SHM"},
      {"-screen", "0", "400x300x30", "-extension", "MIT-SHM", "-extension", "DAMAGE"},
  };
  for (const auto& options : servers) expectNoChangeMissed(options, 400);
  // which shares no memory, though it has the extension
  expectNoChangeMissed({"-screen", "0", "400x300x24", "-listen", "tcp"}, 400, "127.0.0.1");

  const PrivateServer poor({"-screen", "0", "400x300x16"});
  const DisplayVariable variable(poor.display().c_str());
  x11::connectToWindowServer();
  EXPECT_FALSE(capture(CGMainDisplayID()));
}

/// Two monitors on the desktop's own screen, each plain but for a square.
class TwoMonitorsTest : public ::testing::Test {
 protected:
  TwoMonitorsTest() {
    x11::connectToWindowServer();
    observer.coverScreen();
    observer.setMonitor("Left", "1000/250x800/200+0+400", "screen");
    observer.setMonitor("*Right", "1400/350x800/200+1000+300");
    left = observer.atom("Left");
    right = observer.atom("Right");
    painter.fill({0, 0, 2400, 1200}, 0x203040);
    painter.fill({100, 500, 200, 200}, 0xe02010);
    painter.fill({2000, 500, 200, 200}, 0x10c0f0);
  }
  ~TwoMonitorsTest() override {
    for (const auto* name : {"Left", "Right"}) observer.deleteMonitor(name);
  }

  Observer observer;
  ScreenPainter painter{1};
  CGDirectDisplayID left, right;
};

struct Decoded {
  explicit Decoded(const Value::Bytes& file) {
    const auto* bytes = file.data();
    const auto size = static_cast<unsigned long>(file.size());
    const std::unique_ptr<void, decltype(&tjDestroy)> reader(tjInitDecompress(), &tjDestroy);
    int colours = 0;
    tjDecompressHeader3(reader.get(), bytes, size, &width, &height, &sampling, &colours);
    pixels.resize(static_cast<size_t>(width) * height);
    EXPECT_EQ(tjDecompress2(reader.get(), bytes, size, reinterpret_cast<uint8_t*>(pixels.data()),
                            width, 0, height, TJPF_BGRX, 0),
              0);
  }
  void expect(int x, int y, uint32_t colour) const {
    const uint32_t there = pixels.at(static_cast<size_t>(y) * width + x);
    for (const int shift : {0, 8, 16}) {
      EXPECT_NEAR(there >> shift & 0xff, colour >> shift & 0xff, 4) << x << "," << y;
    }
  }
  int width = 0, height = 0, sampling = 0;
  Pixels pixels;
};

TEST_F(TwoMonitorsTest, ReachThePhoneAsTheyAre) {
  MainFlutterWindow host;
  const auto answer = [&](CGDirectDisplayID display, int64_t maxWidth, int64_t quality = 60) {
    return captureScreen(
        host, {.display = std::to_string(display), .maxWidth = maxWidth, .quality = quality});
  };
  const auto jpeg = [&](auto... request) {
    return *answer(request...).find("jpeg")->template getIf<Value::Bytes>();
  };
  const ValueMap unchanged{{"unchanged", Value(true)}};
  const Decoded ofLeft(jpeg(left, 500));
  EXPECT_EQ(std::tuple(ofLeft.width, ofLeft.height, ofLeft.sampling),
            std::tuple(500, 400, int{TJSAMP_420}));
  ofLeft.expect(100, 100, 0xe02010);
  ofLeft.expect(40, 40, 0x203040);
  ofLeft.expect(160, 100, 0x203040);
  EXPECT_EQ(answer(left, 500), unchanged);
  painter.fill({0, 400, 90, 90}, 0x203044);
  EXPECT_EQ(answer(left, 500), unchanged) << "no more than what may differ unseen";
  painter.fill({0, 400, 2, 2}, 0x203045);
  Decoded(jpeg(left, 500)).expect(40, 40, 0x203044);

  const Decoded ofRight(jpeg(right, 1400, 95));
  ofRight.expect(1005, 205, 0x10c0f0);
  ofRight.expect(1195, 395, 0x10c0f0);
  ofRight.expect(990, 300, 0x203040);
  resetScreenCapture(host);
  const auto small = jpeg(right, 1400, 20);
  resetScreenCapture(host);
  EXPECT_LT(small.size(), jpeg(right, 1400, 95).size());
  resetScreenCapture(host);
  EXPECT_EQ(answer(7, 500), (ValueMap{{"error", Value("no_display")}}));
}

TEST_F(TwoMonitorsTest, AreNeitherGrabbedNorScaledAgainWhileStill) {
  const auto dataOf = [](CGImageRef image) {
    return CGBitmapContextGetData(draw(image, 500, 400).get());
  };
  const auto first = capture(left);
  const auto* pixels = dataOf(first.get());
  EXPECT_EQ(capture(left).get(), first.get());
  EXPECT_EQ(dataOf(capture(left).get()), pixels);
  // what happens on the other one does not matter
  painter.fill({1000, 400, 400, 400}, 0);
  EXPECT_EQ(capture(left).get(), first.get());
  painter.fill({999, 1199, 1, 1}, 0);
  EXPECT_NE(capture(left).get(), first.get());
  EXPECT_EQ(pixelsOf(first.get()).back(), 0xff203040);
  EXPECT_EQ(pixelsOf(capture(left).get()).back(), 0xff000000);
}

TEST_F(TwoMonitorsTest, GiveNothingWhenGoneOrForbidden) {
  EXPECT_TRUE(capture(left));
  permissions::setGranted(Permission::screenCapture, false);
  EXPECT_FALSE(capture(left));
  permissions::setGranted(Permission::screenCapture, true);
  EXPECT_TRUE(capture(left));
  observer.deleteMonitor("Left");
  EXPECT_FALSE(capture(left));
  EXPECT_FALSE(capture(kCGNullDirectDisplay));
  // the server refuses what is not on the screen
  observer.setMonitor("Left", "1000/250x800/200+0+401", "screen");
  EXPECT_FALSE(capture(left));
  EXPECT_TRUE(capture(right));
}

}  // namespace
}  // namespace tapdeck::testing
