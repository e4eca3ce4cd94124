#include "Platform/Linux/X11/Keyboard/SlotPool.h"

namespace tapdeck::x11 {

std::optional<size_t> SlotPool::find(Keysym keysym) const {
  const auto found = _slotByKeysym.find(keysym);
  if (found == _slotByKeysym.end()) return std::nullopt;
  return found->second;
}

std::optional<size_t> SlotPool::assignEmpty(Keysym keysym) {
  // slots are filled in order and never emptied
  if (_slotByKeysym.size() == _slots.size()) return std::nullopt;
  return fill(_slotByKeysym.size(), keysym);
}

std::optional<size_t> SlotPool::assignOldest(Keysym keysym, uint64_t lastRead,
                                             const std::function<bool(size_t slot)>& mustStay) {
  std::optional<size_t> oldest;
  for (size_t slot = 0; slot < _slots.size(); ++slot) {
    if (_slots[slot].lastUse > lastRead || mustStay(slot)) continue;
    if (!oldest || _slots[slot].lastUse < _slots[*oldest].lastUse) oldest = slot;
  }
  return fill(oldest, keysym);
}

std::optional<size_t> SlotPool::fill(std::optional<size_t> slot, Keysym keysym) {
  if (!slot) return std::nullopt;
  _slotByKeysym.erase(_slots[*slot].keysym);
  _slots[*slot].keysym = keysym;
  _slotByKeysym[keysym] = *slot;
  return slot;
}

}  // namespace tapdeck::x11
