#include <gtest/gtest.h>

#include <cstring>

#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Input/TextTyping.h"
#include "Runner/Input/UnicodeText.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/TypingClient.h"
#include "Tests/Support/Desktop/TypingKeyboard.h"
#include "Tests/Support/Desktop/TypingText.h"

namespace tapdeck::testing {
namespace {

TypingClient::Kind kind = TypingClient::Kind::textView;

constexpr CGKeyCode kOne = 18;
constexpr CGKeyCode kShift = 56;
constexpr CGKeyCode kControl = 59;
constexpr CGKeyCode kAlt = 58;
constexpr CGKeyCode kCommand = 55;

/// In bytes.
constexpr size_t kLong = 4000;

struct Case {
  const char* layout;
  uint8_t group;
  bool caps;
  std::vector<CGKeyCode> held;
  /// What the user's own keys A, S and D give.
  const char* ownKeys = "";
};

class TypingTest : public ::testing::Test {
 protected:
  ~TypingTest() override {
    x11::releaseEverything();
    keyboard.setLayout("us");
  }

  /// An answer on the poster's own connection comes after all that was posted there.
  static void awaitServer() { const Owned answer(CGEventCreate(nullptr)); }
  /// As the host types, but without its pause after each press.
  static void typeAtOnce(const std::string& text) {
    for (const auto cluster : graphemeClusters(text)) {
      const std::u16string units = utf16Units(cluster);
      for (const bool down : {true, false}) {
        const Owned event(CGEventCreateKeyboardEvent(nullptr, 0, down));
        CGEventKeyboardSetUnicodeString(event.get(), units.size(),
                                        reinterpret_cast<const UniChar*>(units.data()));
        CGEventPost(kCGHIDEventTap, event.get());
      }
    }
  }
  void expectExact(const std::string& text, const std::string& what) {
    // a long text as fast as it goes, others at the host's pace
    text.size() > kLong ? typeAtOnce(text) : typeUnicodeText(text);
    const std::string received = client.received(text);
    EXPECT_TRUE(received == text) << what << ": " << differenceOf(text, received);
  }
  void expectExact(const Case& each, const std::string& text) {
    keyboard.lockCaps(each.caps);
    keyboard.lockGroup(each.group);
    for (const CGKeyCode key : each.held) postKey(key, true);
    awaitServer();
    const auto before = keyboard.state();
    expectExact(text, std::string(each.layout) + " group " + std::to_string(each.group) +
                          (each.caps ? " caps" : "") + " held " + std::to_string(each.held.size()));
    EXPECT_EQ(keyboard.state(), before) << "typing changed the keyboard's state";
    for (const CGKeyCode key : each.held) postKey(key, false);
  }

  /// On a key that the layout lacks.
  void expectShortcut() {
    keyboard.setLayout("fr");
    postKey(kControl, true);
    postKey(kOne, true, kCGEventFlagMaskControl);
    postKey(kOne, false, kCGEventFlagMaskControl);
    postKey(kControl, false);
    EXPECT_EQ(client.received("one"), "one");
  }

  // before connecting: with the server's own map
  Observer observer;
  TypingKeyboard keyboard{observer};
  TypingClient client{kind, observer};
};

TEST_F(TypingTest, EveryCharacterArrivesUnderEveryLayoutAndState) {
  x11::connectToWindowServer();
  const std::string whole = longText();
  ASSERT_GE(graphemeClusters(whole).size(), 2000U);
  // more characters than there are keys to borrow, each once
  const std::string part = longText(700);
  const std::string sample =
      "aA zZ1!\"€@\\ éÖß ξΨ ёЖ ش漢字\n\t👍🏽👨‍👩‍👧 e\u0301.\n";
  Case cases[] = {
      {"us", 0, false, {}, "asd"},       {"de", 0, true, {}, "asd"},
      {"fr", 0, false, {kShift}, "qsd"}, {"ru", 0, false, {kControl, kCommand}, "фыв"},
      {"us,ru", 0, true, {kAlt}, "asd"}, {"us,ru", 1, true, {kShift, kControl}, "фыв"},
  };
  int number = 0;
  for (Case& each : cases) {
    // one of the three applications gets the whole text under this layout
    const std::string& text = number++ % 3 == static_cast<int>(kind) ? whole : part;
    keyboard.setLayout(each.layout);
    const std::string keymap = TypingKeyboard::dump();
    expectExact(each, text);
    expectExact(Case{each.layout, each.group, true, {}}, sample);
    expectExact(Case{each.layout, each.group, false, {kCommand}}, sample);
    postKey(kShift, true);
    postKey(kShift, false);
    expectExact(Case{each.layout, each.group, false, {}}, sample);
    keyboard.lockGroup(each.group);
    x11::releaseEverything();
    EXPECT_TRUE(TypingKeyboard::dump() == keymap) << "the keymap stays changed: " << each.layout;
    keyboard.tapKeys({38, 39, 40});
    EXPECT_EQ(client.received(each.ownKeys), each.ownKeys);
  }
  if (kind == TypingClient::Kind::qtView) expectShortcut();
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  using Kind = tapdeck::testing::TypingClient::Kind;
  if (argc > 1 && std::strcmp(argv[1], "qtview") == 0) tapdeck::testing::kind = Kind::qtView;
  if (argc > 1 && std::strcmp(argv[1], "terminal") == 0) tapdeck::testing::kind = Kind::terminal;
  return RUN_ALL_TESTS();
}
