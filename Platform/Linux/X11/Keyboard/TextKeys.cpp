#include "Platform/Linux/X11/Keyboard/TextKeys.h"

#include <algorithm>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

constexpr uint8_t kEveryModifier = 0xff;
// bytes of the action, by the keyboard extension's protocol
constexpr size_t kNewKey = 1;
constexpr size_t kModifierMask = 2;

bool redirects(const KeyAction& action) {
  return action[0] == XCB_XKB_SA_TYPE_REDIRECT_KEY && action[kModifierMask] == kEveryModifier;
}

}  // namespace

KeyMapping textKey(Keycode code, const std::array<TextGroup, kTextGroups>& groups) {
  // of the first key type, which is one level for every modifier on every X server
  KeyMapping key;
  key.groupInfo = kTextGroups;
  key.width = 1;
  for (const TextGroup& mapping : groups) {
    KeyAction action{XCB_XKB_SA_TYPE_REDIRECT_KEY};
    action[kNewKey] = mapping.deliveredAs.value_or(code);
    action[kModifierMask] = kEveryModifier;
    key.keysyms.push_back(mapping.keysym);
    key.actions.push_back(action);
  }
  return key;
}

bool isTextKey(const KeyMapping& key) {
  // without actions where a process was killed between the two requests
  return key.groupInfo == kTextGroups && key.width == 1 &&
         std::all_of(key.actions.begin(), key.actions.end(), redirects);
}

}  // namespace tapdeck::x11
