#include <ApplicationServices/ApplicationServices.h>
#include <endian.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "Platform/Applications.h"
#include "Platform/Events.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Platform/Linux/X11/WindowServerError.h"
#include "Platform/Screens.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Desktop/PrivateServer.h"

namespace tapdeck::testing {
namespace {

std::string connectError(const char* display) {
  const DisplayVariable variable(display);
  try {
    x11::connectToWindowServer();
  } catch (const x11::WindowServerError& error) {
    return error.what();
  }
  return "connected";
}

TEST(ConnectTest, SaysWhatIsMissingAndWhatToDo) {
  const auto expectError = [](const char* display, const std::string& part) {
    const std::string message = connectError(display);
    EXPECT_NE(message.find(part), std::string::npos) << message;
  };
  expectError(nullptr, "set DISPLAY");
  expectError("nonsense", "not the name of an X display");
  expectError(":6999", "Check that its X server is running");
  for (const std::string extension : {"XTEST", "XFIXES", "RANDR"}) {
    const PrivateServer server({"-extension", extension});
    expectError(server.display().c_str(), "has no " + extension + " extension");
  }
}

TEST(ServerFailureTest, EveryFunctionComesBackWithAnAnswer) {
  int changes = 0;
  PrivateServer server({});
  {
    const DisplayVariable variable(server.display().c_str());
    x11::connectToWindowServer();
    platform::observeScreenParameters([&changes] { ++changes; });
  }
  ASSERT_EQ(platform::screens().size(), 1U);
  const CGPoint place = CGPointMake(10, 10);
  const auto mouseEvent = [place](CGEventType type) {
    return Owned(CGEventCreateMouseEvent(nullptr, type, place, kCGMouseButtonLeft));
  };
  const auto press = mouseEvent(kCGEventLeftMouseDown);
  const auto release = mouseEvent(kCGEventLeftMouseUp);
  const Owned scroll(
      CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, 1, 500, 0, 0));
  CGEventPost(kCGHIDEventTap, press.get());
  EXPECT_TRUE(AXIsProcessTrusted());
  const CGDirectDisplayID display = CGMainDisplayID();
  const Owned image(CGDisplayCreateImage(display));
  EXPECT_TRUE(image);
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
  EXPECT_EQ(CGDisplayCreateImage(display), nullptr);
  EXPECT_TRUE(platform::screens().empty());
  EXPECT_FALSE(platform::mainScreen().has_value());
  EXPECT_EQ(platform::mouseLocation().x, 0);
  EXPECT_EQ(x11::pixelsPerPoint(), 1);
  x11::releaseEverything();
  // the watch on the dead connection ends too: the loop runs dry instead of turning for ever
  runFor(std::chrono::milliseconds(100));
  EXPECT_TRUE(eventually([] { return g_main_context_pending(nullptr) == FALSE; }));
  EXPECT_EQ(changes, 0);
  x11::connectToWindowServer();
  EXPECT_EQ(platform::screens().size(), 1U);
}

TEST(ServerFailureTest, WithoutAWindowManagerNoWindowHasTheFocus) {
  const PrivateServer server({});
  const DisplayVariable variable(server.display().c_str());
  x11::connectToWindowServer();
  const Owned application(AXUIElementCreateApplication(::getpid()));
  const Owned attribute(
      CFStringCreateWithCString(nullptr, "AXFocusedWindow", kCFStringEncodingUTF8));
  CFTypeRef window = nullptr;
  EXPECT_EQ(AXUIElementCopyAttributeValue(application.get(), attribute.get(), &window),
            kAXErrorNoValue);
  EXPECT_FALSE(platform::frontmostApplication());
  EXPECT_TRUE(platform::runningApplications().empty());
  // the whole of the display can be used
  EXPECT_EQ(platform::visibleFrame(platform::screens().front()).size.height,
            CGDisplayBounds(CGMainDisplayID()).size.height);
}

/// Whether anything but white stands within 16 pixels of the place, on the screen as the server
/// shows it in its folder: cursor included, which no request of the protocol tells.
bool isMarked(const std::filesystem::path& folder, size_t x, size_t y) {
  const std::string bytes = contentsOf(folder / "Xvfb_screen0");
  // an image in the XWD format: big-endian header words, a name, colours of 12 bytes, rows
  const auto word = [&bytes](size_t index) {
    uint32_t value = 0;
    std::memcpy(&value, &bytes.at(4 * index), sizeof value);
    return be32toh(value);
  };
  const size_t pixels = word(0) + 12 * word(19);
  const size_t bytesPerLine = word(12);
  for (size_t row = y - 16; row < y + 16; ++row) {
    for (size_t column = x - 16; column < x + 16; ++column) {
      const size_t start = pixels + row * bytesPerLine + column * 4;
      if (bytes.compare(start, 3, "\xff\xff\xff") != 0) return true;
    }
  }
  return false;
}

TEST(CursorTest, ShowsAgainAfterAsManyShowsAsHides) {
  const TemporaryFolder screen;
  // whose root window, unlike a modern one's, has a cursor
  const PrivateServer server({"-retro", "-fbdir", screen.path});
  const DisplayVariable variable(server.display().c_str());
  x11::connectToWindowServer();
  Observer observer;
  observer.coverScreen();
  CGWarpMouseCursorPosition(CGPointMake(100, 100));
  const auto isShown = [&] { return isMarked(screen.path, 100, 100); };
  const auto isHidden = [&] { return !isShown(); };

  ASSERT_TRUE(eventually(isShown));
  CGDisplayShowCursor(0);
  CGDisplayHideCursor(0);
  EXPECT_TRUE(eventually(isHidden));
  CGDisplayHideCursor(0);
  CGDisplayShowCursor(0);
  // the server draws the cursor when it has run out of requests, so before it takes the second
  for (int i = 0; i < 2; ++i) x11::pointerPixel();
  EXPECT_TRUE(isHidden());
  CGDisplayShowCursor(0);
  EXPECT_TRUE(eventually(isShown));

  CGDisplayHideCursor(0);
  EXPECT_TRUE(eventually(isHidden));
  x11::releaseEverything();
  EXPECT_TRUE(eventually(isShown));
}

}  // namespace
}  // namespace tapdeck::testing
