#include "Platform/Linux/X11/Keyboard/KeyPlan.h"

#include <algorithm>
#include <unordered_map>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"

namespace tapdeck::quartz {
namespace {

// the first four key types are the same on every X server
constexpr uint8_t kOneLevel = 0;
constexpr uint8_t kTwoLevel = 1;
constexpr uint8_t kAlphabetic = 2;
constexpr uint8_t kKeypad = 3;

// by virtual key code (kVK_)
const std::unordered_map<CGKeyCode, UsKey>& usKeys() {
  using namespace keysyms;
  static const std::unordered_map<CGKeyCode, UsKey> keys = {
      {0, {'a', 'A'}},      {11, {'b', 'B'}},     {8, {'c', 'C'}},      {2, {'d', 'D'}},
      {14, {'e', 'E'}},     {3, {'f', 'F'}},      {5, {'g', 'G'}},      {4, {'h', 'H'}},
      {34, {'i', 'I'}},     {38, {'j', 'J'}},     {40, {'k', 'K'}},     {37, {'l', 'L'}},
      {46, {'m', 'M'}},     {45, {'n', 'N'}},     {31, {'o', 'O'}},     {35, {'p', 'P'}},
      {12, {'q', 'Q'}},     {15, {'r', 'R'}},     {1, {'s', 'S'}},      {17, {'t', 'T'}},
      {32, {'u', 'U'}},     {9, {'v', 'V'}},      {13, {'w', 'W'}},     {7, {'x', 'X'}},
      {16, {'y', 'Y'}},     {6, {'z', 'Z'}},      {29, {'0', ')'}},     {18, {'1', '!'}},
      {19, {'2', '@'}},     {20, {'3', '#'}},     {21, {'4', '$'}},     {23, {'5', '%'}},
      {22, {'6', '^'}},     {26, {'7', '&'}},     {28, {'8', '*'}},     {25, {'9', '('}},
      {27, {'-', '_'}},     {24, {'=', '+'}},     {33, {'[', '{'}},     {30, {']', '}'}},
      {42, {'\\', '|'}},    {41, {';', ':'}},     {39, {'\'', '"'}},    {43, {',', '<'}},
      {47, {'.', '>'}},     {44, {'/', '?'}},     {50, {'`', '~'}},     {49, {' ', ' '}},
      {36, {Return, 0}},    {48, {Tab, 0}},       {51, {BackSpace, 0}}, {53, {Escape, 0}},
      {123, {Left, 0}},     {124, {Right, 0}},    {125, {Down, 0}},     {126, {Up, 0}},
      {115, {Home, 0}},     {119, {End, 0}},      {116, {Prior, 0}},    {121, {Next, 0}},
      {122, {F1, 0}},       {120, {F1 + 1, 0}},   {99, {F1 + 2, 0}},    {118, {F1 + 3, 0}},
      {96, {F1 + 4, 0}},    {97, {F1 + 5, 0}},    {98, {F1 + 6, 0}},    {100, {F1 + 7, 0}},
      {101, {F1 + 8, 0}},   {109, {F1 + 9, 0}},   {103, {F1 + 10, 0}},  {111, {F1 + 11, 0}},
      {56, {Shift_L, 0}},   {59, {Control_L, 0}}, {58, {Alt_L, 0}},     {55, {Super_L, 0}},
      {57, {Caps_Lock, 0}},
  };
  return keys;
}

bool isSpare(Keysym keysym) {
  // keysymdef.h and XF86keysym.h: the launch keys 1 to F, and what multimedia and office keyboards
  // had; none of the volume, brightness, player, radio, power and browser keys. Nor any of the keys
  // for editing (copy, undo, find, open): browsers take those for commands by their place on the
  // keyboard, whatever they mean.
  static const std::vector<Keysym> rare = [] {
    std::vector<Keysym> keys = {
        0xff0a,  // Linefeed
        '(',        ')',
        0xb1,        // plusminus, as the parentheses on some keypads
        0x1008ff65,  // XF86MenuKB
        0x1008ff8a,  // XF86Xfer
        0x1008ff5a,  // XF86DOS
        0x1008ff74,  // XF86RotateWindows
        0x1008ff7f,  // XF86TaskPane
        0x1008ff5b,  // XF86Documents
        0x1008ff6e,  // XF86Phone
        0x1008ff8e,  // XF86Messenger
        0x1008ff5f,  // XF86Go
        0x1008ff3c,  // XF86Finance
        0x1008ff5e,  // XF86Game
        0x1008ff36,  // XF86Shop
        0x1008ff8f,  // XF86WebCam
        0x1008ffb6,  // XF86AudioPreset
        0x1008fe22,  // XF86Next_VMode
        0x1008fe23,  // XF86Prev_VMode
    };
    for (Keysym launch = 0x1008ff41; launch <= 0x1008ff4f; ++launch) keys.push_back(launch);
    return keys;
  }();
  return std::find(rare.begin(), rare.end(), keysym) != rare.end();
}

}  // namespace

std::optional<UsKey> usKeyFor(CGKeyCode code) {
  const auto found = usKeys().find(code);
  if (found == usKeys().end()) return std::nullopt;
  return found->second;
}

std::optional<UsKey> mediaKeyFor(uint32_t keyType) {
  switch (keyType) {
    case 16:
      return UsKey{keysyms::XF86AudioPlay};
    case 17:
      return UsKey{keysyms::XF86AudioNext};
    case 18:
      return UsKey{keysyms::XF86AudioPrev};
    default:
      return std::nullopt;
  }
}

std::vector<CGKeyCode> modifierKeysIn(CGEventFlags flags) {
  std::vector<CGKeyCode> keys;
  if ((flags & kCGEventFlagMaskShift) != 0) keys.push_back(56);
  if ((flags & kCGEventFlagMaskControl) != 0) keys.push_back(59);
  if ((flags & kCGEventFlagMaskAlternate) != 0) keys.push_back(58);
  if ((flags & kCGEventFlagMaskCommand) != 0) keys.push_back(55);
  return keys;
}

std::optional<RealKey> realKeyFor(const UsKey& key, const Keymap& map, int activeGroup) {
  if (const auto code = map.keyFor(key.plain, activeGroup)) return RealKey{*code, std::nullopt};
  for (uint8_t group = 0; group < 4; ++group) {
    if (const auto code = map.keyFor(key.plain, group)) return RealKey{*code, group};
  }
  return std::nullopt;
}

std::optional<LayoutKey> layoutKeyFor(Keysym keysym, const Keymap& map, int activeGroup) {
  if (const auto code = map.keyFor(keysym, activeGroup)) return LayoutKey{*code, false};
  for (int code = map.first; code <= map.last; ++code) {
    const KeyMeaning& key = map.keys[static_cast<size_t>(code)];
    const auto group = static_cast<size_t>(key.groupFor(activeGroup));
    const size_t place = group * key.width + 1;
    // on the keypad it is Num Lock that gives the second level
    const bool isKeypad = group < key.types.size() && key.types[group] == kKeypad;
    if (key.width > 1 && place < key.keysyms.size() && key.keysyms[place] == keysym && !isKeypad) {
      return LayoutKey{static_cast<Keycode>(code), true};
    }
  }
  return std::nullopt;
}

KeyMeaning substituteFor(const UsKey& key) {
  const bool isLetter = key.plain >= 'a' && key.plain <= 'z';
  const bool hasShifted = key.shifted != kNoKeysym;
  KeyMeaning meaning;
  meaning.types[0] = isLetter ? kAlphabetic : hasShifted ? kTwoLevel : kOneLevel;
  meaning.groupInfo = 1;
  meaning.keysyms = {key.plain};
  if (hasShifted) meaning.keysyms.push_back(key.shifted);
  meaning.width = static_cast<uint8_t>(meaning.keysyms.size());
  return meaning;
}

bool isSubstitute(const KeyMeaning& meaning) {
  if (!meaning.actions.empty() || meaning.groups() != 1) return false;
  for (const auto& [code, key] : usKeys()) {
    if (meaning.keysyms == substituteFor(key).keysyms) return true;
  }
  for (uint32_t type = 16; type <= 18; ++type) {
    if (meaning.keysyms == substituteFor(*mediaKeyFor(type)).keysyms) return true;
  }
  return false;
}

SpareKeys spareKeysOf(const Keymap& map) {
  // the very first is none to the kernel, and so to some programs
  constexpr int firstUseful = 9;
  SpareKeys spare;
  for (int number = std::max<int>(map.first, firstUseful); number <= map.last; ++number) {
    const auto code = static_cast<Keycode>(number);
    const KeyMeaning& key = map.keys[code];
    if (map.modifiers[code] != 0 || map.isSpecial[code] || !key.actions.empty()) continue;
    if (std::all_of(key.keysyms.begin(), key.keysyms.end(),
                    [](Keysym keysym) { return keysym == kNoKeysym; })) {
      spare.unused.push_back(code);
    } else if (isSpare(key.plainKeysym(0))) {
      spare.rare.push_back(code);
    }
  }
  return spare;
}

}  // namespace tapdeck::quartz
