#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "Platform/Events.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/X11/Input/StepQueue.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Input/KeyTable.h"
#include "Runner/Input/MediaKeys.h"
#include "Runner/Input/TextTyping.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Desktop/PrivateServer.h"
#include "Tests/Support/Desktop/TypingKeyboard.h"
#include "Tests/Support/Seed.h"

namespace tapdeck::testing {
namespace {

using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

/// A window with the keyboard focus. Translates the keys that it hears as applications do, by the
/// server's map and each event's state, with a library of its own.
class KeysListener {
 public:
  explicit KeysListener(Observer& observer) : _observer(observer) {
    const xcb_window_t window = _observer.coverScreen();
    const uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_change_window_attributes(_observer.get(), window, XCB_CW_EVENT_MASK, &events);
    xcb_set_input_focus(_observer.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    _observer.sync();
    if (xkb_x11_setup_xkb_extension(
            _observer.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0) {
      throw std::runtime_error("no X keyboard extension");
    }
  }

  /// Waits for so many presses and releases, of keys and buttons, and gives them as "down Shift_L",
  /// "up Control+c" (with the modifiers that act on it) and "button 1".
  std::vector<std::string> heard(size_t count) {
    std::vector<std::string> lines;
    eventually([&] {
      while (lines.size() < count) {
        const auto event = Observer::owned(xcb_poll_for_event(_observer.get()));
        if (event == nullptr) return false;
        if (const std::string line = lineFor(*event); !line.empty()) lines.push_back(line);
      }
      return true;
    });
    return lines;
  }

 private:
  std::string lineFor(const xcb_generic_event_t& event) {
    // the kinds of event are laid out alike
    const auto& input = reinterpret_cast<const xcb_key_press_event_t&>(event);
    const auto kind = event.response_type;
    if (kind == XCB_BUTTON_PRESS) return "button " + std::to_string(input.detail);
    if (kind != XCB_KEY_PRESS && kind != XCB_KEY_RELEASE) return {};
    return (kind == XCB_KEY_PRESS ? "down " : "up ") + keyText(input.detail, input.state);
  }

  std::string keyText(uint8_t code, uint16_t state) {
    const std::shared_ptr<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                               &xkb_context_unref);
    const std::shared_ptr<xkb_keymap> keymap(
        xkb_x11_keymap_new_from_device(context.get(), _observer.get(),
                                       xkb_x11_get_core_keyboard_device_id(_observer.get()),
                                       XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref);
    const std::shared_ptr<xkb_state> keyboard(xkb_state_new(keymap.get()), &xkb_state_unref);
    xkb_state_update_mask(keyboard.get(), state & 0xff, 0, 0, 0, 0, state >> 13 & 3);
    const xkb_keysym_t keysym = xkb_state_key_get_one_sym(keyboard.get(), code);
    char name[64] = "";
    xkb_keysym_get_name(keysym, name, sizeof name);
    std::string text;
    const auto add = [&](uint16_t mask, const char* modifier) {
      if ((state & mask) != 0) text += std::string(modifier) + "+";
    };
    add(XCB_MOD_MASK_CONTROL, "Control");
    add(XCB_MOD_MASK_1, "Alt");
    add(XCB_MOD_MASK_4, "Super");
    return text + name;
  }

  Observer& _observer;
};

/// Every name that a key has, and its keysym's. The last one makes those after it capital.
std::vector<std::pair<std::string, std::string>> namedKeys() {
  std::istringstream names(
      "space space return Return enter Return tab Tab delete BackSpace backspace BackSpace "
      "escape Escape esc Escape left Left right Right down Down up Up arrowleft Left "
      "arrowright Right arrowdown Down arrowup Up shift Shift_L control Control_L ctrl Control_L "
      "option Alt_L alt Alt_L command Super_L cmd Super_L home Home end End pageup Prior "
      "pagedown Next - minus = equal [ bracketleft ] bracketright \\ backslash ; semicolon "
      "' apostrophe , comma . period / slash ` grave f1 F1 f2 F2 f3 F3 f4 F4 f5 F5 f6 F6 f7 F7 "
      "f8 F8 f9 F9 f10 F10 f11 F11 f12 F12 capslock Caps_Lock");
  std::vector<std::pair<std::string, std::string>> keys;
  for (const char each : std::string("abcdefghijklmnopqrstuvwxyz0123456789")) {
    keys.emplace_back(std::string(1, each), std::string(1, each));
  }
  for (std::string name, keysym; names >> name >> keysym;) keys.emplace_back(name, keysym);
  return keys;
}

void postMouse(CGEventType type, double x, double y, CGMouseButton button = kCGMouseButtonLeft) {
  const Owned event(CGEventCreateMouseEvent(nullptr, type, CGPointMake(x, y), button));
  CGEventPost(kCGHIDEventTap, event.get());
}

/// Presses and releases at random, and then ends in an orderly way or is killed.
int holdAtRandom(unsigned seed, const std::string& end) {
  x11::connectToWindowServer();
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
  // a key that the layout lacks: its group stays locked while it is pressed
  if (seed % 4 == 1) postKey(keyCodeForName("a"), true);
  // when the pointer has come, so has all before it
  const int place = 100 + static_cast<int>(seed % 400);
  postMouse(kCGEventMouseMoved, place, 55);
  Observer observer;
  eventually([&] { return observer.pointer().x == place; });
  if (end == "killed") ::raise(SIGKILL);
  x11::releaseEverything();
  return 0;
}

/// Is killed in the midst of a text: group and Caps Lock are not as the user has locked them, and a
/// borrowed key is pressed.
int dieWhileTyping() {
  x11::Connection connection;
  x11::KeyboardMonitor monitor(connection);
  x11::InputSender sender(connection, monitor);
  sender.lockModifiers(XCB_MOD_MASK_LOCK, 0, XCB_MOD_MASK_LOCK);
  sender.lockGroup(2, 1);
  sender.lockGroup(0, 1);
  constexpr x11::Keycode borrowed = 248;
  sender.keepMappings({{borrowed, {}}});
  sender.pressKey(borrowed);
  connection.sync();
  return ::raise(SIGKILL);
}

/// Types where no file can grow, as on a full disk, and is killed.
int typeOnFullDisk() {
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit nothing{0, RLIM_INFINITY};
  ::setrlimit(RLIMIT_FSIZE, &nothing);
  x11::connectToWindowServer();
  typeUnicodeText("aB\u0436");
  postMouse(kCGEventMouseMoved, 77, 55);
  Observer observer;
  eventually([&] { return observer.pointer().x == 77; });
  return ::raise(SIGKILL);
}

/// In a process of its own: a journal belongs to one that lives. Gives how that ended.
int runHolder(const std::string& arguments) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  return std::system(("exec " + program + " hold " + arguments).c_str());
}

TEST(HeldTest, NothingStaysPressedAtTheEnd) {
  // without a window manager, whose key bindings and menus would act for a while after
  const PrivateServer server({});
  const DisplayVariable variable(server.display().c_str());
  Observer observer;
  TypingKeyboard keyboard{observer};
  keyboard.setLayout("ru,gr");
  const std::string keymap = TypingKeyboard::dump();
  int foundPressed = 0;
  int foundLocked = 0;
  const unsigned first = testSeed();
  for (unsigned seed = first; seed != first + 10; ++seed) {
    SCOPED_TRACE(seed);
    const uint8_t group = seed / 4 % 2;
    keyboard.lockGroup(group);
    if (seed % 2 != 0) {
      ASSERT_TRUE(WIFSIGNALED(runHolder(std::to_string(seed) + " killed")));
      foundPressed += keyboard.pressedKeys().empty() ? 0 : 1;
      foundLocked += keyboard.state().group == group ? 0 : 1;
      EXPECT_FALSE(TypingKeyboard::dump() == keymap) << "nothing to put back: no test";
      ASSERT_EQ(runHolder("0 nothing"), 0);
    } else {
      ASSERT_EQ(runHolder(std::to_string(seed) + " end"), 0);
    }
    EXPECT_EQ(keyboard.pressedKeys(), "");
    EXPECT_EQ(observer.pointer().buttons, 0U);
    EXPECT_EQ(keyboard.state().held, 0U);
    EXPECT_EQ(keyboard.state().group, group);
    EXPECT_TRUE(TypingKeyboard::dump() == keymap);
  }
  EXPECT_GT(foundPressed, 0) << "nothing to release: no test";
  EXPECT_GT(foundLocked, 0) << "no group to lock: no test";
  keyboard.lockCaps(false);
}

TEST(HeldTest, AKillAmidATextLeavesNothingBehind) {
  Observer observer;
  TypingKeyboard keyboard{observer};
  keyboard.setLayout("us,ru,gr,il");
  // none, or what the user has chosen after the kill
  for (const uint8_t chosen : {0, 3}) {
    keyboard.lockGroup(1);
    keyboard.lockCaps(true);
    ASSERT_TRUE(WIFSIGNALED(runHolder("0 typing")));
    ASSERT_EQ(keyboard.state(), (TypingKeyboard::State{0, 0, 0}));
    ASSERT_NE(keyboard.pressedKeys(), "");
    keyboard.lockGroup(chosen);
    ASSERT_EQ(runHolder("0 nothing"), 0);
    EXPECT_EQ(keyboard.pressedKeys(), "");
    const unsigned expected = chosen == 0 ? 1 : chosen;
    EXPECT_EQ(keyboard.state(), (TypingKeyboard::State{0, XCB_MOD_MASK_LOCK, expected}));
  }
  keyboard.lockCaps(false);
  keyboard.setLayout("us");
}

TEST(HeldTest, AFullDiskLeavesTheKeymapAlone) {
  Observer observer;
  KeysListener listener{observer};
  TypingKeyboard keyboard{observer};
  keyboard.setLayout("us");
  const std::string keymap = TypingKeyboard::dump();
  // typed with the layout's own keys; it has none for the last one
  ASSERT_TRUE(WIFSIGNALED(runHolder("0 full-disk")));
  EXPECT_THAT(listener.heard(6),
              ElementsAre("down a", "up a", "down Shift_L", "down B", "up B", "up Shift_L"));
  EXPECT_TRUE(TypingKeyboard::dump() == keymap);
}

class KeysTest : public ::testing::Test {
 protected:
  ~KeysTest() override {
    x11::releaseEverything();
    keyboard.setLayout("us");
  }

  void connect(const std::string& layout, uint8_t group = 0) {
    keyboard.setLayout(layout);
    keyboard.lockGroup(group);
    x11::connectToWindowServer();
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
      {"us", 0}, {"fr", 0}, {"us,ru", 0}, {"us,ru", 1}, {"ru,gr,il,bg", 1}};
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
  // flags whose keys nobody presses
  tap("space", kCGEventFlagMaskCommand | kCGEventFlagMaskAlternate);
  EXPECT_THAT(listener.heard(6),
              ElementsAre("down Alt_L", "down Alt+Super_L", "down Alt+Super+space",
                          "up Alt+Super+space", "up Alt+Super+Super_L", "up Alt+Alt_L"));
  for (const MediaKey key : {MediaKey::playPause, MediaKey::next, MediaKey::previous}) {
    postMediaKey(key);
  }
  EXPECT_THAT(listener.heard(6),
              ElementsAre("down XF86AudioPlay", "up XF86AudioPlay", "down XF86AudioNext",
                          "up XF86AudioNext", "down XF86AudioPrev", "up XF86AudioPrev"));
}

TEST_F(KeysTest, AMissingKeysGroupStaysLongEnoughToBeLookedUp) {
  connect("fr");
  // a connection of its own: the listener drops what it does not know
  Observer server;
  const TypingKeyboard watched{server};
  xcb_xkb_select_events(server.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0,
                        XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, nullptr);
  server.sync();
  // the press waits for a change of the map, and its release behind it
  tap("1");
  EXPECT_EQ(listener.heard(2), (Lines{"down 1", "up 1"}));
  std::vector<uint32_t> times;
  eventually([&] {
    while (const auto event = Observer::owned(xcb_poll_for_event(server.get()))) {
      const auto& notice = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(*event);
      if ((notice.changed & XCB_XKB_STATE_PART_GROUP_LOCK) != 0) times.push_back(notice.time);
    }
    return times.size() >= 2;
  });
  ASSERT_EQ(times.size(), 2U);
  EXPECT_GE(times[1] - times[0], 15U) << "milliseconds";
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
  CGWarpMouseCursorPosition(CGPointMake(31, 41));
  const Owned warped(CGEventCreate(nullptr));
  EXPECT_EQ(CGEventGetLocation(warped.get()).x, 31);
  typeUnicodeText("\u03A9\n");
  EXPECT_THAT(listener.heard(11),
              ElementsAre("down a", "up a", "down U0416", "up U0416", "down b", "up b", "button 1",
                          "down U03A9", "up U03A9", "down Return", "up Return"));
  EXPECT_EQ(observer.pointer(), (Observer::Pointer{31, 41, 0}));
}

TEST_F(KeysTest, ARepeatedPressLeavesNothingPressed) {
  connect("us,fr");
  press("a");
  press("a", kCGEventFlagMaskCommand);
  tap("k", kCGEventFlagMaskCommand);
  // the server tells applications nothing of presses of what is pressed
  EXPECT_THAT(listener.heard(4),
              ElementsAre("down a", "down Super_L", "down Super+k", "up Super+k"));
  // where this layout has another key
  keyboard.lockGroup(1);
  press("a", kCGEventFlagMaskCommand);
  release("a");
  EXPECT_THAT(listener.heard(2), ElementsAre("up Super+q", "up Super+Super_L"));
  EXPECT_EQ(keyboard.pressedKeys(), "");
}

TEST_F(KeysTest, ModifiersActWhateverTheOptionsMadeOfTheirKeys) {
  for (const char* option : {"altwin:meta_win", "altwin:hyper_win", "altwin:ctrl_win",
                             "altwin:alt_win", "grp:lwin_toggle", "altwin:swap_alt_win"}) {
    SCOPED_TRACE(option);
    connect(std::string("us,ru -option ") + option, 1);
    press("cmd", kCGEventFlagMaskCommand);
    tap("c", kCGEventFlagMaskCommand);
    release("cmd");
    tap("c", kCGEventFlagMaskCommand);
    const Lines lines = listener.heard(8);
    EXPECT_EQ(lines[1], "down Super+c");
    EXPECT_EQ(lines[5], "down Super+c");
    EXPECT_EQ(keyboard.pressedKeys(), "");
    EXPECT_EQ(keyboard.state(), (TypingKeyboard::State{0, 0, 1}));
  }
  for (const char* option : {"grp:caps_toggle", "caps:ctrl_modifier"}) {
    SCOPED_TRACE(option);
    connect(std::string("us,ru -option ") + option);
    for (const unsigned locked : {unsigned{XCB_MOD_MASK_LOCK}, 0U}) {
      tap("capslock");
      EXPECT_TRUE(eventually([&] { return keyboard.state().locked == locked; }));
      EXPECT_EQ(keyboard.state(), (TypingKeyboard::State{0, locked, 0}));
    }
  }
}

TEST_F(KeysTest, ALatchedGroupDoesNotChangeWhichKeyIsMeant) {
  connect("us,ru");
  xcb_xkb_latch_lock_state(observer.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 1, 1);
  observer.sync();
  tap("a");
  EXPECT_EQ(listener.heard(1), Lines{"down a"});
}

TEST_F(KeysTest, BorrowedKeysAreGivenBackWhenNobodyNeedsThem) {
  using namespace std::chrono_literals;
  constexpr auto idleTime = 300ms;
  x11::Connection connection;
  keyboard.setLayout("us,ru");
  {
    x11::StepQueue queue(connection, idleTime);
    queue.add(x11::TextStep{{x11::Keysym{0x1000416}}});
    listener.heard(2);
    // as a person's key for the next layout may do, while there are four
    keyboard.lockGroup(3);
    int16_t place = 100;
    EXPECT_TRUE(eventually([&] {
      queue.add(x11::MotionStep{{++place, 100}});
      return keyboard.groups() == 2;
    }));
    EXPECT_EQ(keyboard.state().group, 1U);
  }
  keyboard.setLayout("ru");
  x11::StepQueue queue(connection, idleTime);
  queue.add(x11::KeyStep{{'c', 'C'}, true, 0});
  listener.heard(1);
  std::this_thread::sleep_for(4 * idleTime);
  EXPECT_GT(keyboard.groups(), 1) << "a key that is pressed was given back";
  queue.add(x11::KeyStep{{'c', 'C'}, false, 0});
  EXPECT_TRUE(eventually([&] { return keyboard.groups() == 1; }));
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
  x11::releaseEverything();
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
    if (std::string(argv[3]) == "full-disk") return tapdeck::testing::typeOnFullDisk();
    if (std::string(argv[3]) == "typing") return tapdeck::testing::dieWhileTyping();
    return tapdeck::testing::holdAtRandom(static_cast<unsigned>(std::stoul(argv[2])), argv[3]);
  }
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
