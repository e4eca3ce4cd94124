#include "Platform/macOS/HeldInput/HeldInput.h"
#include "Runner/Input/KeyTable.h"
#include "Runner/Input/Keyboard.h"
#include "Runner/Input/MediaKeys.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

class KeyboardTest : public HostTest {
 protected:
  static std::string event(int code, const std::string& way, const std::string& flags) {
    return "post key " + std::to_string(code) + " " + way + " source none flags " + flags;
  }
  static std::string text(const std::string& way, const std::string& units) {
    return "post key 0 " + way + " source 0 text " + units;
  }
  void key(const char* method, const char* name) { reply(method, "key", name); }
};

TEST_F(KeyboardTest, NamesAreLowerCasedByUnicode) {
  EXPECT_EQ(keyCodeForName("PageDown"), 121);
  EXPECT_EQ(keyCodeForName("`"), 50);
  EXPECT_EQ(keyCodeForName("\u212A"), 40) << "the Kelvin sign is a capital k";
  for (const char* name : {"\u0130", "", "!", "win", "f13", "arrow left", "ａ", "a\u0301"}) {
    EXPECT_EQ(keyCodeForName(name), kNoKeyCode) << name;
  }
  EXPECT_EQ(modifierFlagForName("Win"), CGEventFlags{0x100000});
  EXPECT_EQ(modifierFlagForName("CAPSLOCK"), CGEventFlags{0x10000});
  EXPECT_EQ(modifierFlagForName("fn"), std::nullopt);
}

TEST_F(KeyboardTest, APressTakesTenMillisecondsAndImpliesNothing) {
  key("keyPress", "!");
  key("keyPress", "shift");
  EXPECT_THAT(trace(),
              ElementsAre(event(56, "down", "0x0"), "sleep 10000", event(56, "up", "0x0")));
  EXPECT_EQ(window->_activeModifiers, CGEventFlags{0});
}

TEST_F(KeyboardTest, HeldModifiersMakeAShortcut) {
  key("keyDown", "cmd");
  key("keyDown", "shift");
  key("keyPress", "c");
  key("keyUp", "shift");
  key("keyUp", "command");
  EXPECT_THAT(trace(),
              ElementsAre(event(55, "down", "0x100000"), event(56, "down", "0x120000"),
                          event(8, "down", "0x120000"), "sleep 10000", event(8, "up", "0x120000"),
                          event(56, "up", "0x100000"), event(55, "up", "0x0")));
}

TEST_F(KeyboardTest, OddModifiersKeepTheirOddity) {
  key("keyDown", "win");
  key("keyPress", "space");
  key("keyUp", "shift");
  key("keyUp", "win");
  key("keyDown", "capslock");
  key("keyDown", "nonsense");
  EXPECT_THAT(trace(),
              ElementsAre(event(49, "down", "0x100000"), "sleep 10000", event(49, "up", "0x100000"),
                          event(56, "up", "0x100000"), event(57, "down", "0x10000")));
  EXPECT_EQ(window->_activeModifiers, CGEventFlags{0x10000});
}

TEST_F(KeyboardTest, WhatIsStillHeldCanBeLetGoOf) {
  platform::letGoOfInput();
  key("keyDown", "cmd");
  key("keyDown", "a");
  key("keyDown", "tab");
  key("keyUp", "tab");
  reply("mouseDown");
  reply("mouseUp");
  reply("mouseDown", "button", "middle");
  key("keyDown", "a");
  pointerAt(30, 40);
  trace();
  platform::letGoOfInput();
  platform::letGoOfInput();
  EXPECT_THAT(trace(), ElementsAre("post key 0 up source none flags 0x0",
                                   "post mouse 26 at (30,40) button 2 source none",
                                   "post key 55 up source none flags 0x0"));
}

TEST_F(KeyboardTest, HalfAPressIsStillMade) {
  script().failingEvents = {kCGEventKeyDown};
  key("keyPress", "tab");
  script().systemDefinedFails = true;
  postMediaKey(MediaKey::playPause);
  EXPECT_THAT(trace(), ElementsAre("sleep 10000", event(48, "up", "0x0"), "sleep 10000"));
}

TEST_F(KeyboardTest, TextGoesOutClusterByCluster) {
  const auto type = [&](const char* text) { reply("typeText", "text", text); };
  window->_activeModifiers = kCGEventFlagMaskCommand;
  type("e\u0301\r\n\U0001F1E9\U0001F1EA");
  EXPECT_THAT(trace(), ElementsAre(text("down", "0065 0301"), "sleep 5000", text("up", "0065 0301"),
                                   text("down", "000d 000a"), "sleep 5000", text("up", "000d 000a"),
                                   text("down", "d83c dde9 d83c ddea"), "sleep 5000",
                                   text("up", "d83c dde9 d83c ddea")));
  EXPECT_EQ(window->_activeModifiers, CGEventFlags{kCGEventFlagMaskCommand});

  type("");
  script().failingEvents = {kCGEventKeyUp};
  type("ab");
  script().failingEvents.clear();
  script().sourceFails = true;
  type("ab");
  EXPECT_THAT(trace(), IsEmpty());
}

}  // namespace
}  // namespace tapdeck
