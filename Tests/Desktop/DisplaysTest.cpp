#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <sstream>

#include "Platform/Events.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Platform/Screens.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Desktop/PrivateServer.h"

namespace tapdeck::testing {
namespace {

std::string text(CGRect rect) {
  std::ostringstream out;
  out << rect.origin.x << ' ' << rect.origin.y << ' ' << rect.size.width << ' ' << rect.size.height;
  return out.str();
}

class DisplaysTest : public ::testing::Test {
 protected:
  DisplaysTest() { x11::connectToWindowServer(); }
  ~DisplaysTest() override {
    for (const auto* name : {"Main", "Left", "Above"}) observer.deleteMonitor(name);
  }

  void arrange() {
    observer.setMonitor("Left", "1000/250x800/200+0+400", "screen");
    observer.setMonitor("Above", "800/200x400/100+1000+0");
    observer.setMonitor("*Main", "1400/350x800/200+1000+400");
  }
  std::string boundsOf(const std::string& name) {
    return text(CGDisplayBounds(observer.atom(name)));
  }
  Observer::Pointer pointerAfterMoveTo(double x, double y) {
    const Owned event(CGEventCreateMouseEvent(nullptr, kCGEventMouseMoved, CGPointMake(x, y),
                                              kCGMouseButtonLeft));
    CGEventPost(kCGHIDEventTap, event.get());
    const Owned reached(CGEventCreate(nullptr));
    EXPECT_EQ(CGEventGetLocation(reached.get()).x, x);
    EXPECT_EQ(CGEventGetLocation(reached.get()).y, y);
    return observer.pointer();
  }

  Observer observer;
};

TEST_F(DisplaysTest, ListsThePrimaryFirstAndMeasuresFromIt) {
  arrange();
  EXPECT_EQ(CGMainDisplayID(), observer.atom("Main"));
  EXPECT_EQ(boundsOf("Left"), "-1000 0 1000 800");
  EXPECT_EQ(boundsOf("Above"), "0 -400 800 400");
  EXPECT_EQ(text(CGDisplayBounds(kCGNullDirectDisplay)), "0 0 0 0");

  const std::pair<const char*, const char*> expected[] = {
      {"Main", "0 0 1400 800"}, {"Left", "-1000 0 1000 800"}, {"Above", "0 800 800 400"}};
  const auto screens = platform::screens();
  ASSERT_EQ(screens.size(), std::size(expected));
  for (size_t i = 0; i < screens.size(); ++i) {
    EXPECT_EQ(screens[i].number, observer.atom(expected[i].first));
    EXPECT_EQ(platform::localizedName(screens[i]), expected[i].first);
    EXPECT_EQ(text(screens[i].frame), expected[i].second);
    EXPECT_EQ(screens[i].backingScaleFactor, 1);
  }

  EXPECT_EQ(pointerAfterMoveTo(5, -400), (Observer::Pointer{1005, 0, 0}));
  EXPECT_EQ(platform::mouseLocation().y, 1200);
}

TEST_F(DisplaysTest, TakesTheFirstForPrimaryWhenNoneIs) {
  observer.setMonitor("Left", "500/125x400/100+300+200", "screen");
  observer.setMonitor("Above", "300/75x200/50+0+0");
  EXPECT_EQ(boundsOf("Above"), "-300 -200 300 200");
}

TEST_F(DisplaysTest, TellsEveryChangeOnce) {
  int changes = 0;
  platform::observeScreenParameters([&changes] { ++changes; });
  const auto expectTold = [&changes](int expected) {
    EXPECT_TRUE(eventually([&] { return changes >= expected; })) << expected;
    EXPECT_EQ(changes, expected);
  };
  arrange();
  expectTold(1);
  // a detour that ends where it began is no change; the last step is one
  observer.deleteMonitor("Left");
  observer.setMonitor("Left", "1000/250x800/200+0+400", "screen");
  observer.deleteMonitor("Main");
  observer.setMonitor("*Main", "1400/350x800/200+1000+300");
  expectTold(2);

  observer.publishSettings(settingsProperty({{"Gdk/WindowScalingFactor", 2}}));
  expectTold(3);
  observer.publishSettings(settingsProperty({{"Gdk/WindowScalingFactor", 3}}));
  expectTold(4);
  // other news is not told: wait well past the time within which it would be
  observer.publishSettings(settingsProperty({{"Gdk/WindowScalingFactor", 3}, {"Other", 1}}));
  runFor(std::chrono::milliseconds(200));
  EXPECT_EQ(changes, 4);
}

TEST_F(DisplaysTest, KeepsThePointerWhenTheLastDisplayGoes) {
  const PrivateServer server({});
  const DisplayVariable variable(server.display().c_str());
  x11::connectToWindowServer();
  int changes = 0;
  platform::observeScreenParameters([&changes] { ++changes; });
  EXPECT_EQ(text(CGDisplayBounds(CGMainDisplayID())), "0 0 640 480");

  // too small for the one output, which the server therefore switches off
  EXPECT_NE(std::system("xrandr --fb 320x240 2>/dev/null"), -1);
  EXPECT_TRUE(eventually([&changes] { return changes == 1; }));
  EXPECT_TRUE(platform::screens().empty());
  EXPECT_FALSE(platform::mainScreen().has_value());
  EXPECT_EQ(CGMainDisplayID(), kCGNullDirectDisplay);
  Observer there;
  CGWarpMouseCursorPosition(CGPointMake(31, 41));
  EXPECT_EQ(platform::mouseLocation().x, 31);
  EXPECT_EQ(platform::mouseLocation().y, 1080 - 41);
  EXPECT_EQ(there.pointer(), (Observer::Pointer{31, 41, 0}));
}

TEST_F(DisplaysTest, CountsInPointsOfTheDesktopsScale) {
  arrange();
  EXPECT_EQ(platform::doubleClickInterval(), 0.4);
  const auto settings =
      settingsProperty({{"Net/DoubleClickTime", 250}, {"Gdk/WindowScalingFactor", 2}});
  observer.publishSettings(settings);
  EXPECT_EQ(platform::doubleClickInterval(), 0.25);
  EXPECT_EQ(boundsOf("Left"), "-500 0 500 400");
  EXPECT_EQ(platform::screens()[0].backingScaleFactor, 2);
  EXPECT_EQ(pointerAfterMoveTo(-10, 20.5), (Observer::Pointer{980, 441, 0}));

  for (const auto& [variable, scale] : {std::pair{"4", 4}, {"nonsense", 1}}) {
    const EnvironmentVariable set("GDK_SCALE", variable);
    EXPECT_EQ(x11::pixelsPerPoint(), scale) << variable;
  }

  for (size_t length = 0; length < settings.size(); ++length) {
    observer.publishSettings({settings.data(), settings.data() + length});
    EXPECT_EQ(x11::pixelsPerPoint(), 1) << length;
  }
}

TEST_F(DisplaysTest, FindsTheScreenOfTheFocusedWindow) {
  EXPECT_EQ(platform::mainScreen()->number, platform::screens().front().number);
  arrange();
  for (const auto& [name, x, y] :
       {std::tuple{"Left", 300, 700}, {"Above", 1200, 100}, {"Main", 1500, 800}}) {
    const xcb_window_t window = observer.openManagedWindow(x, y);
    EXPECT_TRUE(eventually([&] { return observer.activeWindow() == window; }));
    EXPECT_EQ(platform::localizedName(*platform::mainScreen()), name);
  }
}

}  // namespace
}  // namespace tapdeck::testing
