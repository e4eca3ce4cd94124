#include <ApplicationServices/ApplicationServices.h>
#include <glib.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "Platform/Events.h"
#include "Platform/Linux/Quartz/WindowServer.h"
#include "Platform/Screens.h"
#include "Runner/Owned.h"
#include "Tests/Desktop/Observer.h"
#include "Tests/Desktop/PrivateServer.h"

namespace tapdeck::testing {
namespace {

std::string connectError(const char* display) {
  const DisplayVariable variable(display);
  try {
    quartz::connectToWindowServer();
  } catch (const quartz::WindowServerError& error) {
    return error.what();
  }
  return "connected";
}

TEST(ConnectTest, SaysWhatIsMissingAndWhatToDo) {
  const auto expectText = [](const std::string& message, const std::string& part) {
    EXPECT_NE(message.find(part), std::string::npos) << message;
  };
  expectText(connectError(nullptr), "set DISPLAY");
  expectText(connectError(""), "set DISPLAY");
  expectText(connectError("nonsense"), "not the name of an X display");
  expectText(connectError(":6999"), "Check that its X server is running");
  for (const std::string extension : {"XTEST", "XFIXES", "RANDR"}) {
    const PrivateServer server({"-extension", extension});
    expectText(connectError(server.display().c_str()), "has no " + extension + " extension");
  }
}

TEST(ServerFailureTest, EveryFunctionComesBackWithAnAnswer) {
  int changes = 0;
  PrivateServer server({});
  {
    const DisplayVariable variable(server.display().c_str());
    quartz::connectToWindowServer();
  }
  ASSERT_EQ(platform::screens().size(), 1U);
  platform::observeScreenParameters([&changes] { ++changes; });
  const CGPoint place = CGPointMake(10, 10);
  const Owned press(
      CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDown, place, kCGMouseButtonLeft));
  const Owned release(
      CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseUp, place, kCGMouseButtonLeft));
  const Owned scroll(
      CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, 1, 500, 0, 0));
  CGEventPost(kCGHIDEventTap, press.get());
  EXPECT_TRUE(AXIsProcessTrusted());
  server.kill();

  for (const auto& event : {press.get(), release.get(), scroll.get(), press.get()}) {
    CGEventPost(kCGHIDEventTap, event);
  }
  EXPECT_EQ(CGEventCreate(nullptr), nullptr);
  EXPECT_EQ(CGWarpMouseCursorPosition(place), kCGErrorFailure);
  EXPECT_EQ(CGDisplayHideCursor(0), kCGErrorFailure);
  EXPECT_EQ(CGDisplayShowCursor(0), kCGErrorFailure);
  EXPECT_EQ(CGMainDisplayID(), kCGNullDirectDisplay);
  EXPECT_EQ(CGDisplayBounds(1).size.width, 0);
  EXPECT_FALSE(AXIsProcessTrusted());
  EXPECT_FALSE(CGPreflightScreenCaptureAccess());
  EXPECT_TRUE(platform::screens().empty());
  EXPECT_FALSE(platform::mainScreen().has_value());
  EXPECT_EQ(platform::mouseLocation().x, 0);
  EXPECT_EQ(platform::doubleClickInterval(), 0.4);
  EXPECT_EQ(quartz::pixelsPerPoint(), 1);
  quartz::letGo();
  // the watch on the dead connection ends too: the loop runs dry instead of turning for ever
  EXPECT_TRUE(eventually([] { return g_main_context_pending(nullptr) == FALSE; }));
  EXPECT_EQ(changes, 0);
  quartz::connectToWindowServer();
  EXPECT_EQ(platform::screens().size(), 1U);
}

/// Reads the screen as the server shows it, cursor included, which no request of the protocol does.
class Framebuffer {
 public:
  Framebuffer() {
    std::string name = (std::filesystem::temp_directory_path() / "framebuffer.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp");
    _folder = name;
  }
  ~Framebuffer() { std::filesystem::remove_all(_folder); }
  Framebuffer(const Framebuffer&) = delete;
  Framebuffer& operator=(const Framebuffer&) = delete;

  std::string folder() const { return _folder.string(); }
  /// Whether anything but white stands within 16 pixels of the place.
  bool isMarked(size_t x, size_t y) const {
    std::ifstream file(_folder / "Xvfb_screen0", std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    // an image in the XWD format: 100 bytes of big-endian header words, a name, colours, rows
    const auto word = [&bytes](size_t index) {
      size_t value = 0;
      for (size_t i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<uint8_t>(bytes.at(4 * index + i));
      }
      return value;
    };
    const size_t headerSize = word(0);
    const size_t bytesPerLine = word(12);
    const size_t colours = word(19);
    const size_t pixels = headerSize + 12 * colours;
    for (size_t row = y - 16; row < y + 16; ++row) {
      for (size_t column = x - 16; column < x + 16; ++column) {
        const size_t start = pixels + row * bytesPerLine + column * 4;
        if (bytes.compare(start, 3, "\xff\xff\xff") != 0) return true;
      }
    }
    return false;
  }

 private:
  std::filesystem::path _folder;
};

TEST(CursorTest, ShowsAgainAfterAsManyShowsAsHides) {
  const Framebuffer screen;
  const PrivateServer server({"-fbdir", screen.folder()});
  const DisplayVariable variable(server.display().c_str());
  quartz::connectToWindowServer();
  Observer observer;
  const xcb_window_t window = observer.coverScreen();
  const xcb_font_t font = xcb_generate_id(observer.get());
  const xcb_cursor_t cross = xcb_generate_id(observer.get());
  const std::string name = "cursor";
  xcb_open_font(observer.get(), font, static_cast<uint16_t>(name.size()), name.data());
  xcb_create_glyph_cursor(observer.get(), cross, font, font, 0, 1, 0, 0, 0, 0xffff, 0xffff, 0xffff);
  xcb_change_window_attributes(observer.get(), window, XCB_CW_CURSOR, &cross);
  observer.sync();
  CGWarpMouseCursorPosition(CGPointMake(100, 100));
  const auto isShown = [&] { return screen.isMarked(100, 100); };
  const auto isHidden = [&] { return !screen.isMarked(100, 100); };
  const auto staysHidden = [&] {
    // the server draws the cursor when it has run out of requests, so before it takes the second
    for (int i = 0; i < 2; ++i) CGMainDisplayID();
    return isHidden();
  };

  ASSERT_TRUE(eventually(isShown));
  CGDisplayShowCursor(0);
  CGDisplayHideCursor(0);
  EXPECT_TRUE(eventually(isHidden));
  CGDisplayHideCursor(0);
  CGDisplayShowCursor(0);
  EXPECT_TRUE(staysHidden());
  CGDisplayShowCursor(0);
  EXPECT_TRUE(eventually(isShown));

  CGDisplayHideCursor(0);
  CGDisplayHideCursor(0);
  EXPECT_TRUE(eventually(isHidden));
  quartz::letGo();
  EXPECT_TRUE(eventually(isShown));
}

}  // namespace
}  // namespace tapdeck::testing
