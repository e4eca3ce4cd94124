#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "Platform/Linux/X11/Keyboard/Journal.h"
#include "Platform/Linux/X11/Keyboard/KeyPlan.h"
#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/TextPlan.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::x11 {
namespace {

using ::testing::ElementsAre;

KeyMapping twoGroups(Keysym first, Keysym firstShifted, Keysym second, Keysym secondShifted) {
  KeyMapping key;
  key.groupInfo = 2;
  key.width = 2;
  key.keysyms = {first, firstShifted, second, secondShifted};
  return key;
}

TEST(TextPlanTest, TextIsOneKeysymForEachCharacterThatCanBeTyped) {
  EXPECT_THAT(keysymsForText(u"aé"), ElementsAre('a', 0xE9));
  EXPECT_THAT(keysymsForText(u"\r\n\n\r\t\b\x1B"),
              ElementsAre(keysyms::Return, keysyms::Return, keysyms::Return, keysyms::Tab,
                          keysyms::BackSpace, keysyms::Escape));
  const char16_t broken[] = {0xD83D, u'a', 0xDC4D, 0x01, 0x85, 0};
  EXPECT_THAT(keysymsForText(broken), ElementsAre(0x100FFFD, 'a', 0x100FFFD));
}

TEST(KeyPlanTest, OnlyKeysThatNobodyMissesAreSpare) {
  constexpr Keysym launch5 = 0x1008FF45;
  constexpr Keysym raiseVolume = 0x1008FF13;
  Keymap map;
  map.first = 200;
  map.last = 205;
  const auto define = [&map](Keycode code, Keysym keysym) {
    map.keys[code].groupInfo = 1;
    map.keys[code].width = 1;
    map.keys[code].keysyms = {keysym};
  };
  define(201, launch5);
  define(202, raiseVolume);
  define(203, launch5);
  map.modifiers[203] = 1;
  define(204, launch5);
  map.keys[204].actions = {KeyAction{1}};
  map.isSpecial[205] = true;
  const SpareKeys spare = spareKeysOf(map);
  EXPECT_THAT(spare.unused, ElementsAre(200));
  EXPECT_THAT(spare.rare, ElementsAre(201));
}

TEST(KeyPlanTest, AMissingKeyIsAFurtherGroupInItsPlace) {
  constexpr Keycode code = 24;
  const UsKey q{'q', 'Q'};
  const KeyMapping original = twoGroups(0x6CA, 0x6EA, 0x7F8, 0x7D8);
  Keymap map;
  map.keys[code] = original;
  EXPECT_EQ(usKeycodeOf(q, map), code);
  const KeyMapping made = withUsGroup(original, q, 3);
  EXPECT_THAT(made.keysyms, ElementsAre(0x6CA, 0x6EA, 0x7F8, 0x7D8, 0x6CA, 0x6EA, 'q', 'Q'))
      << "a group that the key did not have gives what it gave there";
  EXPECT_TRUE(hasUsGroup(made, original, code));
  EXPECT_FALSE(hasUsGroup(original, original, code));
  EXPECT_FALSE(hasUsGroup(made, twoGroups('x', 'X', 'y', 'Y'), code)) << "another layout since";
  map.modifiers[code] = 1;
  EXPECT_FALSE(usKeycodeOf(q, map)) << "a modifier stays what it is";
}

TEST(JournalTest, ReadsWhatItWroteAndNothingElse) {
  InputRecord held;
  held.keys.set(8).set(255);
  held.buttons.set(1);
  held.locks = {1, 2, 3, 4};
  held.mappings[156] = twoGroups(0x1008FF41, 'A', 0x6CA, 0x6EA);
  const auto bytes = writeRecord(held);
  const auto read = readRecord(bytes);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->keys, held.keys);
  EXPECT_EQ(read->buttons, held.buttons);
  EXPECT_EQ(read->locks, held.locks);
  EXPECT_EQ(read->mappings, held.mappings);
  for (size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(readRecord({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}));
  }
  auto longer = bytes;
  longer.push_back(0);
  EXPECT_FALSE(readRecord(longer));
}

TEST(JournalTest, HasItsSpaceFromTheStart) {
  const TemporaryFolder folder;
  const EnvironmentVariable runtime("XDG_RUNTIME_DIR", folder.path.c_str());
  const EnvironmentVariable display("DISPLAY", ":7");
  const auto file = folder.path / "tapdeck" / "held-7";
  {
    Journal journal;
    const auto size = std::filesystem::file_size(file);
    struct stat status {};
    ::stat(file.c_str(), &status);
    EXPECT_GE(static_cast<uintmax_t>(status.st_blocks) * 512, size)
        << "space that is not there yet";
    InputRecord record;
    for (Keycode code = 8; code != 0; ++code) record.mappings[code] = twoGroups('a', 'A', 'b', 'B');
    journal.write(record);
    EXPECT_EQ(std::filesystem::file_size(file), size);
    EXPECT_EQ(journal.readLeftOver()->mappings, record.mappings);
    journal.write(InputRecord());
    EXPECT_FALSE(journal.readLeftOver());
  }
  EXPECT_FALSE(std::filesystem::exists(file)) << "nothing is held";
}

TEST(KeymapTest, AReplyThatDoesNotHoldTogetherIsRefused) {
  std::vector<uint8_t> reply(40);
  EXPECT_TRUE(readKeymap(reply.data(), reply.size()));
  EXPECT_FALSE(readKeymap(reply.data(), reply.size() - 1));
  reply[12] = 0x02;  // keysyms are present
  reply[20] = 1;     // of one key, whose bytes are missing
  EXPECT_FALSE(readKeymap(reply.data(), reply.size()));
}

}  // namespace
}  // namespace tapdeck::x11
