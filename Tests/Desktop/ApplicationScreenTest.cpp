#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "Platform/Linux/Fronts/DotShape.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Display/LaserPointer.h"
#include "Runner/Display/WindowPlacement.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {
namespace {

using ::testing::Contains;

class ScreenTest : public ::testing::Test {
 protected:
  ScreenTest() { x11::connectToWindowServer(); }

  Observer observer;
  std::shared_ptr<MainFlutterWindow> host = std::make_shared<MainFlutterWindow>();
};

class LaserDotTest : public ScreenTest {
 protected:
  uint32_t colourAt(int x, int y) const {
    const auto image =
        observer.wait(xcb_get_image(observer.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, observer.root(),
                                    static_cast<int16_t>(x), static_cast<int16_t>(y), 1, 1, ~0U),
                      xcb_get_image_reply);
    const uint8_t* pixel = xcb_get_image_data(image.get());
    return static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
  }
  bool isDotAt(int x, int y) const {
    constexpr uint32_t kWhite = 0xffffff;
    return colourAt(x, y) == kDot && colourAt(x - 12, y) == kDot && colourAt(x, y + 12) == kDot &&
           colourAt(x - 14, y) == kWhite && colourAt(x + 11, y + 11) == kWhite;
  }
  static void movePointer(const char* x, const char* y) {
    outputOf({"xdotool", "mousemove", x, y});
  }

  static constexpr uint32_t kDot = 0xc70000;
};

TEST_F(LaserDotTest, FollowsThePointerOverEverythingAndTakesNoClick) {
  observer.coverScreen();
  movePointer("400", "300");
  showLaser(host);
  showLaser(host);
  EXPECT_TRUE(eventually([&] { return isDotAt(400, 300); }));
  outputOf({"xdotool", "click", "1"});
  EXPECT_THAT(observer.heard(), Contains("down 1 at 400,300"));
  movePointer("700", "120");
  EXPECT_TRUE(eventually([&] { return isDotAt(700, 120); }));
  EXPECT_FALSE(isDotAt(400, 300));

  observer.coverScreen();
  EXPECT_TRUE(eventually([&] { return isDotAt(700, 120); })) << "what came later lies over it";
  hideLaser(host);
  EXPECT_TRUE(eventually([&] { return colourAt(700, 120) != kDot; }));
  showLaser(host);
  EXPECT_TRUE(eventually([&] { return isDotAt(700, 120); }));
  host.reset();
  EXPECT_TRUE(eventually([&] { return colourAt(700, 120) != kDot; })) << "outlives the host";
}

TEST(DotShapeTest, IsATranslucentDiscInAGlow) {
  platform::OverlayStyle style{};
  style.alpha = 0.85;
  style.layerBackground = {0.78, 0, 0, 1};
  style.cornerRadius = 13;
  style.layerShadow = {1, 0, 0, 1};
  style.shadowOpacity = 0.9F;
  style.shadowRadius = 5;
  const auto pixels = layerPixels(style, 52, 2);
  EXPECT_EQ(pixels[26 * 52 + 26], 0xd9a90000U);
  EXPECT_EQ(pixels[26 * 52 + 1], 0xd9a90000U);
  EXPECT_GT(pixels[0] >> 24, 10U) << "no glow";
  EXPECT_LT(pixels[0] >> 24, 60U);
}

class WindowMoveTest : public ScreenTest {
 protected:
  WindowMoveTest() {
    observer.setMonitor("*Main", "1400/350x800/200+1000+400", "screen");
    observer.setMonitor("Left", "1000/250x800/200+0+400");
  }
  ~WindowMoveTest() override {
    for (const auto* name : {"Main", "Left"}) observer.deleteMonitor(name);
  }

  struct Place {
    int x, y;
    friend bool operator==(const Place&, const Place&) = default;
  };
  /// Of the outermost window around it: the window manager's frame.
  Place frameCorner(xcb_window_t window) const {
    for (;;) {
      const auto tree = observer.wait(xcb_query_tree(observer.get(), window), xcb_query_tree_reply);
      if (tree->parent == observer.root()) break;
      window = tree->parent;
    }
    const auto frame =
        observer.wait(xcb_get_geometry(observer.get(), window), xcb_get_geometry_reply);
    return {frame->x, frame->y};
  }
  xcb_window_t openFocused() {
    const xcb_window_t window = observer.openManagedWindow(1300, 700);
    EXPECT_TRUE(eventually([&] { return observer.activeWindow() == window; }));
    return window;
  }
  void setNumbers(xcb_window_t window, const char* name, xcb_atom_t type,
                  const std::vector<uint32_t>& values) {
    xcb_change_property(observer.get(), XCB_PROP_MODE_REPLACE, window, observer.atom(name), type,
                        32, static_cast<uint32_t>(values.size()), values.data());
    observer.sync();
  }
  void moveTo(const std::string& display) {
    moveWindowToDisplay(*host, std::to_string(observer.atom(display)));
  }
  static std::string activeSize() {
    const auto geometry = outputOf({"xdotool", "getactivewindow", "getwindowgeometry"});
    return geometry.substr(geometry.find("Geometry:"));
  }
};

TEST_F(WindowMoveTest, LandsInsideTheUsableCornerWithItsFrame) {
  const xcb_window_t window = openFocused();
  const std::string size = activeSize();
  const auto lands = [&](const std::string& display, Place corner) {
    moveTo(display);
    return eventually([&] { return frameCorner(window) == corner; }, std::chrono::seconds(10));
  };
  EXPECT_TRUE(lands("Left", {12, 412}));
  EXPECT_TRUE(lands("Main", {1012, 412}));

  const std::string state = "add,maximized_vert,maximized_horz";
  outputOf({"wmctrl", "-r", ":ACTIVE:", "-b", state});
  ASSERT_TRUE(eventually([&] { return activeSize() != size; }));
  EXPECT_TRUE(lands("Left", {12, 412})) << "a maximised window did not move";
  outputOf({"wmctrl", "-r", ":ACTIVE:", "-b", "add,fullscreen"});
  ASSERT_TRUE(eventually([&] { return activeSize() != size; }));
  EXPECT_TRUE(lands("Main", {1012, 412})) << "a full-screen window did not move";
  EXPECT_TRUE(eventually([&] { return activeSize() == size; })) << activeSize();
}

TEST_F(WindowMoveTest, KeepsClearOfPanelsAndLooksPastShadows) {
  const xcb_window_t panel = observer.openManagedWindow(0, 400);
  // 430 pixels from the top of the root window: 30 of the left display's
  setNumbers(panel, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
             {0, 0, 430, 0, 0, 0, 0, 0, 0, 999, 0, 0});
  const xcb_window_t window = openFocused();
  moveTo("Left");
  EXPECT_TRUE(eventually([&] { return frameCorner(window) == Place{12, 442}; }));

  setNumbers(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {20, 20, 15, 25});
  moveTo("Left");
  EXPECT_TRUE(eventually([&] { return frameCorner(window) == Place{-8, 427}; }));
}

}  // namespace
}  // namespace tapdeck::testing
