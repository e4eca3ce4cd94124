#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "Platform/Events.h"
#include "Platform/Linux/Permissions.h"
#include "Platform/Linux/Quartz/WindowServer.h"
#include "Runner/Input/KeyTable.h"
#include "Runner/Input/MediaKeys.h"
#include "Runner/Input/TextTyping.h"
#include "Runner/Input/UnicodeText.h"
#include "Runner/Owned.h"
#include "Tests/Desktop/KeysListener.h"
#include "Tests/Desktop/TypingKeyboard.h"

namespace tapdeck::testing {
namespace {

using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

/// Every name that a key has, and its keysym's.
std::vector<std::pair<std::string, std::string>> namedKeys() {
  std::vector<std::pair<std::string, std::string>> keys = {{"enter", "Return"},
                                                           {"delete", "BackSpace"},
                                                           {"esc", "Escape"},
                                                           {"shift", "Shift_L"},
                                                           {"control", "Control_L"},
                                                           {"ctrl", "Control_L"},
                                                           {"option", "Alt_L"},
                                                           {"alt", "Alt_L"},
                                                           {"command", "Super_L"},
                                                           {"cmd", "Super_L"},
                                                           {"pageup", "Prior"},
                                                           {"pagedown", "Next"},
                                                           {"backspace", "BackSpace"},
                                                           {"space", "space"},
                                                           {"-", "minus"},
                                                           {"=", "equal"},
                                                           {"[", "bracketleft"},
                                                           {"]", "bracketright"},
                                                           {"\\", "backslash"},
                                                           {";", "semicolon"},
                                                           {"'", "apostrophe"},
                                                           {",", "comma"},
                                                           {".", "period"},
                                                           {"/", "slash"},
                                                           {"`", "grave"}};
  for (const std::string same : {"Return", "Tab", "Escape", "Home", "End"}) {
    keys.emplace_back(lowercased(same), same);
  }
  for (const std::string arrow : {"Left", "Right", "Up", "Down"}) {
    keys.emplace_back(lowercased(arrow), arrow);
    keys.emplace_back("arrow" + lowercased(arrow), arrow);
  }
  for (int n = 1; n <= 12; ++n) keys.emplace_back("f" + std::to_string(n), "F" + std::to_string(n));
  for (const char each : std::string("abcdefghijklmnopqrstuvwxyz0123456789")) {
    keys.emplace_back(std::string(1, each), std::string(1, each));
  }
  // last: what follows it would be capital
  keys.emplace_back("capslock", "Caps_Lock");
  return keys;
}

void postMouse(CGEventType type, double x, double y, CGMouseButton button = kCGMouseButtonLeft) {
  const Owned event(CGEventCreateMouseEvent(nullptr, type, CGPointMake(x, y), button));
  CGEventPost(kCGHIDEventTap, event.get());
}

/// Presses and releases at random, and then ends in an orderly way or is killed.
int holdAtRandom(unsigned seed, const std::string& end) {
  quartz::connectToWindowServer();
  // to start is all that the next one need do
  if (end == "nothing") return 0;
  const auto names = namedKeys();
  std::mt19937 random(seed);
  for (int i = 0; i < 40; ++i) {
    const bool down = random() % 3 != 0;
    const auto button = static_cast<CGMouseButton>(random() % 3);
    switch (random() % 4) {
      case 0: {
        constexpr CGEventType downs[] = {kCGEventLeftMouseDown, kCGEventRightMouseDown,
                                         kCGEventOtherMouseDown};
        constexpr CGEventType ups[] = {kCGEventLeftMouseUp, kCGEventRightMouseUp,
                                       kCGEventOtherMouseUp};
        postMouse((down ? downs : ups)[button], 10, 10, button);
        break;
      }
      case 1:
        typeUnicodeText(i % 2 == 0 ? "\u0436\u03C9" : "ok");
        break;
      default:
        postKey(keyCodeForName(names[random() % names.size()].first), down);
    }
  }
  // when the pointer has come, so has all before it
  const int place = 100 + static_cast<int>(seed);
  postMouse(kCGEventMouseMoved, place, 55);
  Observer observer;
  eventually([&] { return observer.pointer().x == place; });
  if (end == "killed") ::raise(SIGKILL);
  quartz::letGo();
  return 0;
}

/// In a process of its own: a journal belongs to one that lives. Gives how that ended.
int runHolder(const std::string& arguments) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  return std::system(("exec " + program + " hold " + arguments).c_str());
}

TEST(HeldTest, NothingStaysPressedAtTheEnd) {
  Observer observer;
  // else clicks open the window manager's menu
  observer.coverScreen();
  TypingKeyboard keyboard{observer};
  keyboard.setLayout("us,ru");
  const std::string keymap = TypingKeyboard::dump();
  int foundPressed = 0;
  for (unsigned seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    if (seed % 2 == 0) {
      ASSERT_TRUE(WIFSIGNALED(runHolder(std::to_string(seed) + " killed")));
      foundPressed += keyboard.pressedKeys().empty() ? 0 : 1;
      EXPECT_FALSE(TypingKeyboard::dump() == keymap) << "nothing to put back: no test";
      ASSERT_EQ(runHolder("0 nothing"), 0);
    } else {
      ASSERT_EQ(runHolder(std::to_string(seed) + " end"), 0);
    }
    EXPECT_EQ(keyboard.pressedKeys(), "");
    EXPECT_EQ(observer.pointer().buttons, 0U);
    EXPECT_EQ(keyboard.state().held, 0U);
    EXPECT_EQ(keyboard.state().group, 0U);
    EXPECT_TRUE(TypingKeyboard::dump() == keymap);
  }
  EXPECT_GT(foundPressed, 0) << "nothing to release: no test";
  keyboard.lockCaps(false);
}

class KeysTest : public ::testing::Test {
 protected:
  ~KeysTest() override {
    quartz::letGo();
    keyboard.setLayout("us");
  }

  void connect(const std::string& layout, uint8_t group = 0) {
    keyboard.setLayout(layout);
    keyboard.lockGroup(group);
    quartz::connectToWindowServer();
    permissions::setGranted(permissions::Permission::control, true);
  }
  static void press(const char* name, CGEventFlags flags = 0) {
    postKey(keyCodeForName(name), true, flags);
  }
  static void release(const char* name, CGEventFlags flags = 0) {
    postKey(keyCodeForName(name), false, flags);
  }
  static void tap(const char* name, CGEventFlags flags = 0) {
    press(name, flags);
    release(name, flags);
  }
  Observer observer;
  TypingKeyboard keyboard{observer};
  KeysListener listener{observer};
};

TEST_F(KeysTest, EveryNameGivesItsKeyUnderEveryLayout) {
  const auto names = namedKeys();
  ASSERT_EQ(names.size(), 87U);
  const std::pair<const char*, uint8_t> layouts[] = {
      {"us", 0}, {"fr", 0}, {"us,ru", 0}, {"us,ru", 1}};
  for (const auto& [layout, group] : layouts) {
    connect(layout, group);
    for (const auto& [name, keysym] : names) {
      press(name.c_str());
      // before the next key: it may take the place of this one
      EXPECT_EQ(listener.heard(1), Lines{"down " + keysym}) << layout << " " << int{group};
      release(name.c_str());
      listener.heard(1);
    }
    EXPECT_EQ(keyboard.pressedKeys(), "");
    EXPECT_EQ(keyboard.state().group, group);
  }
}

TEST_F(KeysTest, ModifiersActOnEveryKindOfKey) {
  for (const auto& [layout, group] : {std::pair{"fr", 0}, {"ru", 0}, {"us,ru", 1}}) {
    SCOPED_TRACE(layout);
    connect(layout, static_cast<uint8_t>(group));
    press("control", kCGEventFlagMaskControl);
    tap("c", kCGEventFlagMaskControl);
    release("control");
    EXPECT_THAT(listener.heard(4), ElementsAre("down Control_L", "down Control+c", "up Control+c",
                                               "up Control+Control_L"));
    press("shift", kCGEventFlagMaskShift);
    tap("s", kCGEventFlagMaskShift);
    release("shift");
    EXPECT_THAT(listener.heard(4), ElementsAre("down Shift_L", "down S", "up S", "up Shift_L"));
  }
  // a flag whose key nobody presses
  tap("space", kCGEventFlagMaskCommand);
  EXPECT_THAT(listener.heard(4), ElementsAre("down Super_L", "down Super+space", "up Super+space",
                                             "up Super+Super_L"));
  for (const MediaKey key : {MediaKey::playPause, MediaKey::next, MediaKey::previous}) {
    postMediaKey(key);
  }
  EXPECT_THAT(listener.heard(6),
              ElementsAre("down XF86AudioPlay", "up XF86AudioPlay", "down XF86AudioNext",
                          "up XF86AudioNext", "down XF86AudioPrev", "up XF86AudioPrev"));
}

TEST_F(KeysTest, KeysTextAndPointerKeepTheirOrder) {
  connect("us");
  postMouse(kCGEventMouseMoved, 100, 100);
  tap("a");
  // needs a change of the keymap: all that follows waits for it
  typeUnicodeText("\u0416");
  tap("b");
  postMouse(kCGEventLeftMouseDown, 210, 220);
  const Owned place(CGEventCreate(nullptr));
  EXPECT_EQ(CGEventGetLocation(place.get()).x, 210);
  postMouse(kCGEventLeftMouseUp, 210, 220);
  typeUnicodeText("\u03A9\n");
  EXPECT_THAT(listener.heard(11),
              ElementsAre("down a", "up a", "down U0416", "up U0416", "down b", "up b", "button 1",
                          "down U03A9", "up U03A9", "down Return", "up Return"));
}

TEST_F(KeysTest, AnotherLayoutMeanwhileStaysInForce) {
  connect("us");
  typeUnicodeText("\u00E9");
  listener.heard(2);
  keyboard.setLayout("de");
  const std::string keymap = TypingKeyboard::dump();
  typeUnicodeText("\u00E9z");
  EXPECT_THAT(listener.heard(4), ElementsAre("down eacute", "up eacute", "down z", "up z"));
  tap("z");
  EXPECT_THAT(listener.heard(2), ElementsAre("down z", "up z"));
  quartz::letGo();
  EXPECT_TRUE(TypingKeyboard::dump() == keymap);
}

TEST_F(KeysTest, WithoutPermissionOnlyReleasesGoOut) {
  connect("us");
  press("q");
  permissions::setGranted(permissions::Permission::control, false);
  press("w");
  typeUnicodeText("x");
  release("w");
  release("q");
  permissions::setGranted(permissions::Permission::control, true);
  tap("e");
  EXPECT_THAT(listener.heard(4), ElementsAre("down q", "up q", "down e", "up e"));
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "hold") {
    return tapdeck::testing::holdAtRandom(static_cast<unsigned>(std::atoi(argv[2])), argv[3]);
  }
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
