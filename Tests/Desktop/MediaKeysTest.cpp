#include <gmock/gmock.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Tests/Support/Desktop/MediaBusPeer.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Desktop/RunningHost.h"

namespace tapdeck::testing {
namespace {

using ::testing::ElementsAre;

constexpr xcb_keysym_t kAudioNext = 0x1008ff17;

void press(const std::string& method) {
  EXPECT_EQ(outputOf({callProgram, method, "null"}), "null\n");
}

/// A program that waits for one key: with the whole keyboard, or by a grab of the key on the root
/// window.
class KeyClient {
 public:
  enum class Kind { keyboard, coreGrab, inputExtensionGrab };

  KeyClient(Kind kind, xcb_keysym_t keysym) : _code(codeOf(keysym)) {
    if (kind == Kind::keyboard) {
      // as good as the focus, which the host's own window may take as it comes up
      _observer.wait(xcb_grab_keyboard(_observer.get(), 0, _observer.root(), XCB_CURRENT_TIME,
                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                     xcb_grab_keyboard_reply);
    } else if (kind == Kind::coreGrab) {
      xcb_grab_key(_observer.get(), 0, _observer.root(), 0, _code, XCB_GRAB_MODE_ASYNC,
                   XCB_GRAB_MODE_ASYNC);
    } else {
      grabByInputExtension();
    }
    _observer.sync();
  }

  /// Waits for a press of the key.
  bool heard() {
    return eventually([this] {
      while (const auto event = Observer::owned(xcb_poll_for_event(_observer.get()))) {
        if (isPress(*event)) return true;
      }
      return false;
    });
  }

 private:
  xcb_keycode_t codeOf(xcb_keysym_t keysym) {
    const xcb_setup_t* setup = xcb_get_setup(_observer.get());
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto map =
        _observer.wait(xcb_get_keyboard_mapping(_observer.get(), setup->min_keycode, count),
                       xcb_get_keyboard_mapping_reply);
    const auto* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    const auto* end = keysyms + xcb_get_keyboard_mapping_keysyms_length(map.get());
    const auto place = (std::find(keysyms, end, keysym) - keysyms) / map->keysyms_per_keycode;
    return static_cast<xcb_keycode_t>(setup->min_keycode + place);
  }

  // as mutter does it
  void grabByInputExtension() {
    _observer.wait(xcb_input_xi_query_version(_observer.get(), 2, 0),
                   xcb_input_xi_query_version_reply);
    const uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const uint32_t noModifiers = 0;
    const auto grab = xcb_input_xi_passive_grab_device(
        _observer.get(), XCB_CURRENT_TIME, _observer.root(), XCB_NONE, _code,
        XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
        XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &events,
        &noModifiers);
    const auto reply = _observer.wait(grab, xcb_input_xi_passive_grab_device_reply);
    EXPECT_TRUE(reply != nullptr && reply->num_modifiers == 0);
  }

  bool isPress(const xcb_generic_event_t& event) const {
    if (event.response_type == XCB_KEY_PRESS) return event.pad0 == _code;
    const auto& generic = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    return event.response_type == XCB_GE_GENERIC && generic.event_type == XCB_INPUT_KEY_PRESS &&
           generic.detail == _code;
  }

  Observer _observer;
  xcb_keycode_t _code;
};

/// Presses the key for the previous track until the player has heard of it: the host learns of
/// players and of what they do a moment later.
bool isReached(const ScriptedPlayer& player) {
  return eventually([&] {
    press("mediaPrevious");
    return !player.calls().empty();
  });
}

/// Waits for two other commands than those of isReached.
std::vector<std::string> twoCommands(const ScriptedPlayer& player) {
  std::vector<std::string> calls;
  eventually([&] {
    calls = player.calls();
    std::erase(calls, "Previous()");
    return calls.size() >= 2;
  });
  return calls;
}

TEST(MediaKeysTest, AKeyThatNobodyGrabbedGoesToThePlayerThatPlayedLast) {
  const RunningHost host;
  const ScriptedPlayer first("first", "Paused");
  EXPECT_TRUE(isReached(first));
  ScriptedPlayer second("second", "Stopped");
  second.change("Playing");
  second.change("Paused");
  EXPECT_TRUE(isReached(second));
  press("mediaPlayPause");
  press("mediaNext");
  EXPECT_THAT(twoCommands(second), ElementsAre("PlayPause()", "Next()"));
}

TEST(MediaKeysTest, WithoutAPlayerTheKeyIsSent) {
  const RunningHost host;
  KeyClient client(KeyClient::Kind::keyboard, kAudioNext);
  press("mediaNext");
  EXPECT_TRUE(client.heard());
}

TEST(MediaKeysTest, AGrabbedKeyGoesToWhoGrabbedIt) {
  const RunningHost host;
  const ScriptedPlayer player("player", "Paused");
  EXPECT_TRUE(isReached(player));
  for (const auto kind : {KeyClient::Kind::coreGrab, KeyClient::Kind::inputExtensionGrab}) {
    KeyClient grabber(kind, kAudioNext);
    press("mediaNext");
    EXPECT_TRUE(grabber.heard()) << static_cast<int>(kind);
  }
  // nobody grabs it any more, and nobody has grabbed the other
  press("mediaPlayPause");
  press("mediaNext");
  EXPECT_THAT(twoCommands(player), ElementsAre("PlayPause()", "Next()"));
}

}  // namespace
}  // namespace tapdeck::testing
