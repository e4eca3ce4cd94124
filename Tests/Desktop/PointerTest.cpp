#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <limits>

#include "Platform/Events.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {
namespace {

using Lines = std::vector<std::string>;
using permissions::Permission;

class PointerTest : public ::testing::Test {
 protected:
  PointerTest() {
    x11::connectToWindowServer();
    permissions::setGranted(Permission::control, true);
    observer.coverScreen();
    post(kCGEventMouseMoved, 50, 50);
    observer.heard();
  }
  ~PointerTest() override {
    x11::releaseEverything();
    permissions::setGranted(Permission::control, true);
  }

  static void post(CGEventType type, double x, double y,
                   CGMouseButton button = kCGMouseButtonLeft) {
    const Owned event(CGEventCreateMouseEvent(nullptr, type, CGPointMake(x, y), button));
    CGEventPost(kCGHIDEventTap, event.get());
    awaitServer();
  }
  static void scroll(int32_t up, int32_t left) {
    const Owned event(
        CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, 2, up, left, 0));
    CGEventPost(kCGHIDEventTap, event.get());
    awaitServer();
  }
  /// An answer on the poster's own connection comes after all that was posted there.
  static void awaitServer() { location(); }
  static CGPoint location() {
    const Owned event(CGEventCreate(nullptr));
    return CGEventGetLocation(event.get());
  }
  /// How often each button was turned or clicked, as "4 4 6 ".
  std::string presses() {
    std::string buttons;
    for (const auto& line : observer.heard()) {
      if (line.starts_with("down ")) buttons += line.substr(5, line.find(" at") - 4);
    }
    return buttons;
  }

  Observer observer;
};

TEST_F(PointerTest, MovesAndWarpsToTheNearestPixelAndReportsThePlace) {
  post(kCGEventMouseMoved, 300.4, 200.6);
  EXPECT_EQ(observer.heard(), Lines{"move to 300,201 holding "});
  EXPECT_EQ(location().x, 300);
  EXPECT_EQ(location().y, 201);
  EXPECT_EQ(platform::mouseLocation().y, 1200 - 201);

  EXPECT_EQ(CGWarpMouseCursorPosition(CGPointMake(7, 9)), kCGErrorSuccess);
  awaitServer();
  EXPECT_EQ(observer.pointer(), (Observer::Pointer{7, 9, 0}));

  post(kCGEventMouseMoved, 1e12, -1e12);
  EXPECT_EQ(observer.pointer(), (Observer::Pointer{2399, 0, 0}));

  const double nowhere = std::numeric_limits<double>::quiet_NaN();
  post(kCGEventLeftMouseDown, nowhere, 5);
  EXPECT_EQ(CGWarpMouseCursorPosition(CGPointMake(5, nowhere)), kCGErrorIllegalArgument);
  EXPECT_EQ(observer.pointer(), (Observer::Pointer{2399, 0, 0}));
}

TEST_F(PointerTest, PressesDragsAndReleasesEachButtonInOrder) {
  const std::tuple<CGMouseButton, CGEventType, CGEventType, CGEventType, std::string> buttons[] = {
      {kCGMouseButtonLeft, kCGEventLeftMouseDown, kCGEventLeftMouseDragged, kCGEventLeftMouseUp,
       "1"},
      {kCGMouseButtonRight, kCGEventRightMouseDown, kCGEventRightMouseDragged, kCGEventRightMouseUp,
       "3"},
      {kCGMouseButtonCenter, kCGEventOtherMouseDown, kCGEventOtherMouseDragged,
       kCGEventOtherMouseUp, "2"},
  };
  for (const auto& [button, down, dragged, up, name] : buttons) {
    post(kCGEventMouseMoved, 100, 100);
    observer.heard();
    post(down, 110, 120, button);
    post(dragged, 130, 140, button);
    post(up, 150, 160, button);
    EXPECT_EQ(observer.heard(),
              (Lines{"move to 110,120 holding ", "down " + name + " at 110,120",
                     "move to 130,140 holding " + name, "move to 150,160 holding " + name,
                     "up " + name + " at 150,160"}));
  }
}

TEST_F(PointerTest, ReachesTheApplicationsButtonWhateverTheMouseIsSetTo) {
  observer.mapButtons({3, 2, 1, 5, 4});
  for (const auto type :
       {kCGEventLeftMouseDown, kCGEventLeftMouseUp, kCGEventRightMouseDown, kCGEventRightMouseUp}) {
    post(type, 50, 50);
  }
  scroll(50, 0);
  EXPECT_EQ(observer.pointer().buttons, 0U);
  EXPECT_EQ(presses(), "1 3 4 ");
  observer.mapButtons({1, 2, 3, 4, 5});
}

TEST_F(PointerTest, GathersScrolledPixelsIntoWheelSteps) {
  scroll(50, 0);
  scroll(-100, 0);
  scroll(0, 50);
  scroll(0, -50);
  EXPECT_EQ(presses(), "4 5 5 6 7 ");

  for (int i = 0; i < 10; ++i) scroll(12, 0);
  EXPECT_EQ(presses(), "4 4 ");
  // 20 are left upwards; a turn forgets them, the other axis and nothing at all do not
  scroll(0, 30);
  scroll(0, 0);
  scroll(30, 20);
  EXPECT_EQ(presses(), "4 6 ");
  scroll(49, 0);
  scroll(-49, 0);
  scroll(-1, 0);
  EXPECT_EQ(presses(), "5 ");

  scroll(std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(presses().size(), 2 * 2 * 100U) << "one event is bounded";
}

TEST_F(PointerTest, LetsGoOfWhatItHoldsAlsoWhenTheConnectionEnds) {
  post(kCGEventLeftMouseDown, 60, 60);
  post(kCGEventOtherMouseDown, 60, 60, kCGMouseButtonCenter);
  EXPECT_EQ(observer.pointer().buttons, 0b011U);
  x11::releaseEverything();
  EXPECT_EQ(observer.pointer().buttons, 0U);
  observer.heard();
  x11::releaseEverything();
  EXPECT_EQ(observer.heard(), Lines{});

  post(kCGEventRightMouseDown, 60, 60);
  x11::connectToWindowServer();
  EXPECT_EQ(observer.pointer().buttons, 0U);
}

TEST_F(PointerTest, PostsNothingButReleasesWhileTheUserDeniesControl) {
  const void* key = kAXTrustedCheckOptionPrompt;
  const void* yes = kCFBooleanTrue;
  const Owned prompt(CFDictionaryCreate(nullptr, &key, &yes, 1, &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks));
  std::vector<Permission> asked;
  permissions::setPromptHandler([&asked](Permission permission) { asked.push_back(permission); });

  EXPECT_TRUE(AXIsProcessTrusted());
  EXPECT_TRUE(AXIsProcessTrustedWithOptions(prompt.get()));
  post(kCGEventLeftMouseDown, 60, 60);
  post(kCGEventOtherMouseDown, 60, 60, kCGMouseButtonCenter);
  permissions::setGranted(Permission::control, false);
  EXPECT_FALSE(AXIsProcessTrusted());
  EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
  EXPECT_TRUE(asked.empty());
  EXPECT_FALSE(AXIsProcessTrustedWithOptions(prompt.get()));
  EXPECT_EQ(asked, std::vector{Permission::control});

  observer.heard();
  post(kCGEventMouseMoved, 70, 70);
  post(kCGEventRightMouseDown, 70, 70);
  post(kCGEventRightMouseUp, 70, 70);
  scroll(500, 500);
  EXPECT_EQ(observer.heard(), Lines{});
  post(kCGEventLeftMouseUp, 70, 70);
  post(kCGEventOtherMouseUp, 70, 70, kCGMouseButtonCenter);
  EXPECT_EQ(observer.heard(), (Lines{"up 1 at 60,60", "up 2 at 60,60"}));

  permissions::setGranted(Permission::screenCapture, false);
  EXPECT_FALSE(CGPreflightScreenCaptureAccess());
  EXPECT_FALSE(CGRequestScreenCaptureAccess());
  EXPECT_EQ(asked.back(), Permission::screenCapture);
  permissions::setGranted(Permission::screenCapture, true);
  permissions::setPromptHandler(nullptr);
}

TEST_F(PointerTest, GetsThroughWhileAnotherClientHoldsTheServer) {
  xcb_grab_server(observer.get());
  observer.sync();
  post(kCGEventMouseMoved, 80, 90);
  EXPECT_EQ(observer.pointer(), (Observer::Pointer{80, 90, 0}));
  xcb_ungrab_server(observer.get());
  observer.sync();
}

}  // namespace
}  // namespace tapdeck::testing
