#include "Platform/Linux/X11/Keyboard/KeyPlan.h"

#include <algorithm>
#include <unordered_map>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

// the first four key types are the same on every X server
constexpr uint8_t kTwoLevel = 1;
constexpr uint8_t kAlphabetic = 2;
constexpr uint8_t kKeypad = 3;

constexpr int kMaxGroups = 4;

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

/// Keycodes in a row, by evdev's numbers, from `first` on.
struct Row {
  Keycode first;
  std::vector<Keysym> keysyms;
};

// without modifiers, whose effect is not in their keysyms alone
const std::unordered_map<Keysym, Keycode>& usPlaces() {
  using namespace keysyms;
  static const std::unordered_map<Keysym, Keycode> places = [] {
    const Row rows[] = {
        {9, {Escape, '1', '2', '3', '4', '5', '6', '7', '8', '9', '0', '-', '=', BackSpace, Tab}},
        {24, {'q', 'w', 'e', 'r', 't', 'y', 'u', 'i', 'o', 'p', '[', ']', Return}},
        {38, {'a', 's', 'd', 'f', 'g', 'h', 'j', 'k', 'l', ';', '\'', '`'}},
        {51, {'\\'}},
        {52, {'z', 'x', 'c', 'v', 'b', 'n', 'm', ',', '.', '/'}},
        {65, {' '}},
        {67, {F1, F1 + 1, F1 + 2, F1 + 3, F1 + 4, F1 + 5, F1 + 6, F1 + 7, F1 + 8, F1 + 9}},
        {95, {F1 + 10, F1 + 11}},
        {110, {Home, Up, Prior, Left, Right, End, Down, Next}},
        {171, {XF86AudioNext, XF86AudioPlay, XF86AudioPrev}},
    };
    std::unordered_map<Keysym, Keycode> all;
    for (const Row& row : rows) {
      Keycode code = row.first;
      for (const Keysym keysym : row.keysyms) all[keysym] = code++;
    }
    return all;
  }();
  return places;
}

/// The US key in this place: one or none.
std::vector<UsKey> usKeysAt(Keycode code) {
  std::vector<UsKey> keys;
  const auto add = [&](const UsKey& key) {
    const auto place = usPlaces().find(key.unshifted);
    if (place != usPlaces().end() && place->second == code) keys.push_back(key);
  };
  for (const auto& [virtualCode, key] : usKeys()) add(key);
  for (uint32_t type = 16; type <= 18; ++type) add(*mediaKeyFor(type));
  return keys;
}

bool isModifier(const UsKey& key) {
  using namespace keysyms;
  return key.unshifted == Shift_L || key.unshifted == Control_L || key.unshifted == Alt_L ||
         key.unshifted == Super_L;
}

/// The real modifiers that the key changes by this action when it is pressed at this level.
uint8_t modifiersChanged(const KeyMapping& key, int activeGroup, size_t level, uint8_t action) {
  constexpr size_t kind = 0;
  constexpr size_t mask = 2;
  const size_t place = static_cast<size_t>(key.groupFor(activeGroup)) * key.width + level;
  if (level >= key.width || place >= key.actions.size()) return 0;
  return key.actions[place][kind] == action ? key.actions[place][mask] : 0;
}

/// The real modifiers of the first key that has the keysym, at whatever level.
uint8_t modifiersOf(Keysym keysym, const Keymap& map) {
  for (int number = map.first; number <= map.last; ++number) {
    const auto code = static_cast<Keycode>(number);
    const auto& keysyms = map.keys[code].keysyms;
    const bool hasIt = std::find(keysyms.begin(), keysyms.end(), keysym) != keysyms.end();
    if (hasIt && map.modifiers[code] != 0) return map.modifiers[code];
  }
  return 0;
}

/// The modifier's own key, else another that sets the same modifier, else one that does so with
/// Shift, as the virtual keys <SUPR> and <META> do.
std::optional<RealKey> modifierKeyFor(Keysym keysym, const Keymap& map, int activeGroup) {
  const uint8_t wanted = modifiersOf(keysym, map);
  const auto sets = [&](Keycode code, size_t level) {
    const KeyMapping& key = map.keys[code];
    return wanted != 0 &&
           modifiersChanged(key, activeGroup, level, XCB_XKB_SA_TYPE_SET_MODS) == wanted;
  };
  std::optional<RealKey> other;
  for (int number = map.first; number <= map.last; ++number) {
    const auto code = static_cast<Keycode>(number);
    const KeyMapping& key = map.keys[code];
    if (sets(code, 0)) {
      if (key.unshiftedKeysym(key.groupFor(activeGroup)) == keysym)
        return RealKey{code, std::nullopt};
      if (!other || other->isShifted) other = RealKey{code, std::nullopt};
    } else if (!other && sets(code, 1)) {
      other = RealKey{code, std::nullopt, true};
    }
  }
  return other;
}

bool isRare(Keysym keysym) {
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

std::optional<RealKey> capsLockKey(const Keymap& map, int activeGroup) {
  for (int number = map.first; number <= map.last; ++number) {
    const auto code = static_cast<Keycode>(number);
    if (modifiersChanged(map.keys[code], activeGroup, 0, XCB_XKB_SA_TYPE_LOCK_MODS) ==
        XCB_MOD_MASK_LOCK) {
      return RealKey{code, std::nullopt};
    }
  }
  return std::nullopt;
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

bool isCapsLock(const UsKey& key) {
  return key.unshifted == keysyms::Caps_Lock;
}

std::optional<RealKey> realKeyFor(const UsKey& key, const Keymap& map, int activeGroup) {
  if (isCapsLock(key)) return capsLockKey(map, activeGroup);
  if (isModifier(key)) {
    if (const auto modifier = modifierKeyFor(key.unshifted, map, activeGroup)) return modifier;
  }
  if (const auto code = map.keyFor(key.unshifted, activeGroup)) return RealKey{*code, std::nullopt};
  for (uint8_t group = 0; group < 4; ++group) {
    if (const auto code = map.keyFor(key.unshifted, group)) return RealKey{*code, group};
  }
  return std::nullopt;
}

std::vector<UsKey> usTextKeys() {
  std::vector<UsKey> keys;
  for (const auto& [code, key] : usKeys()) {
    if (key.shifted != kNoKeysym) keys.push_back(key);
  }
  return keys;
}

std::optional<LayoutKey> layoutKeyFor(Keysym keysym, const Keymap& map, int activeGroup) {
  if (const auto code = map.keyFor(keysym, activeGroup)) return LayoutKey{*code, false};
  for (int code = map.first; code <= map.last; ++code) {
    const KeyMapping& key = map.keys[static_cast<size_t>(code)];
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

std::optional<Keycode> usKeycodeOf(const UsKey& key, const Keymap& map) {
  const auto found = usPlaces().find(key.unshifted);
  if (found == usPlaces().end()) return std::nullopt;
  const Keycode code = found->second;
  const bool isPlain = map.modifiers[code] == 0 && !map.isSpecial[code] &&
                       map.keys[code].actions.empty() && code >= map.first && code <= map.last;
  if (!isPlain) return std::nullopt;
  return code;
}

uint8_t usGroupOf(const Keymap& map) {
  return static_cast<uint8_t>(std::clamp(map.groups(), 1, kMaxGroups - 1));
}

KeyMapping withUsGroup(const KeyMapping& mapping, const UsKey& key, uint8_t group) {
  const uint8_t usType = key.unshifted >= 'a' && key.unshifted <= 'z' ? kAlphabetic : kTwoLevel;
  const bool isPlaceTaken = group < mapping.groups();
  const std::array<Keysym, 2> levels = {key.unshifted,
                                        key.shifted == kNoKeysym ? key.unshifted : key.shifted};
  KeyMapping widened;
  widened.groupInfo = static_cast<uint8_t>((mapping.groupInfo & 0xf0) | (group + 1));
  widened.width = std::max<uint8_t>(mapping.width, levels.size());
  for (int each = 0; each <= group; ++each) {
    const bool isUs = each == group;
    const auto own = static_cast<size_t>(mapping.groupFor(each));
    // a group that is replaced keeps its type, as the widest type has to fill the width
    widened.types[static_cast<size_t>(each)] = isUs && !isPlaceTaken ? usType : mapping.types[own];
    for (size_t level = 0; level < widened.width; ++level) {
      const bool hasOwn = mapping.groups() > 0 && level < mapping.width;
      const Keysym ownKeysym = hasOwn ? mapping.keysyms[own * mapping.width + level] : kNoKeysym;
      const Keysym usKeysym = level < levels.size() ? levels[level] : kNoKeysym;
      widened.keysyms.push_back(isUs ? usKeysym : ownKeysym);
    }
  }
  return widened;
}

bool hasUsGroup(const KeyMapping& mapping, const KeyMapping& original, Keycode code) {
  if (mapping.groups() == 0) return false;
  const auto group = static_cast<uint8_t>(mapping.groups() - 1);
  const auto isMadeOf = [&](const UsKey& key) {
    return mapping.keysyms == withUsGroup(original, key, group).keysyms;
  };
  const auto keys = usKeysAt(code);
  return std::any_of(keys.begin(), keys.end(), isMadeOf);
}

SpareKeys spareKeysOf(const Keymap& map) {
  // keycode 8 is evdev's key 0, which the kernel and some programs ignore
  constexpr int firstUseful = 9;
  SpareKeys spare;
  for (int number = std::max<int>(map.first, firstUseful); number <= map.last; ++number) {
    const auto code = static_cast<Keycode>(number);
    const KeyMapping& key = map.keys[code];
    if (map.modifiers[code] != 0 || map.isSpecial[code] || !key.actions.empty()) continue;
    // reserved for the US key in this place
    if (!usKeysAt(code).empty()) continue;
    if (std::all_of(key.keysyms.begin(), key.keysyms.end(),
                    [](Keysym keysym) { return keysym == kNoKeysym; })) {
      spare.unused.push_back(code);
    } else if (isRare(key.unshiftedKeysym(0))) {
      spare.rare.push_back(code);
    }
  }
  return spare;
}

}  // namespace tapdeck::x11
