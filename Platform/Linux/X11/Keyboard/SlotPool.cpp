#include "Platform/Linux/X11/Keyboard/SlotPool.h"

namespace tapdeck::x11 {

std::optional<size_t> SlotPool::find(Keysym keysym) const {
  const auto found = _places.find(keysym);
  if (found == _places.end()) return std::nullopt;
  return found->second;
}

std::optional<size_t> SlotPool::takeEmpty(Keysym keysym) {
  // places are filled in order and never emptied
  if (_places.size() == _slots.size()) return std::nullopt;
  return fill(_places.size(), keysym);
}

std::optional<size_t> SlotPool::takeOldest(Keysym keysym, uint64_t read,
                                           const std::function<bool(size_t slot)>& mustStay) {
  std::optional<size_t> oldest;
  for (size_t slot = 0; slot < _slots.size(); ++slot) {
    if (_slots[slot].lastUse > read || mustStay(slot)) continue;
    if (!oldest || _slots[slot].lastUse < _slots[*oldest].lastUse) oldest = slot;
  }
  return fill(oldest, keysym);
}

std::optional<size_t> SlotPool::fill(std::optional<size_t> slot, Keysym keysym) {
  if (!slot) return std::nullopt;
  _places.erase(_slots[*slot].keysym);
  _slots[*slot].keysym = keysym;
  _places[keysym] = *slot;
  return slot;
}

}  // namespace tapdeck::x11
