#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// Which keysym each group of each spare key (a slot) is assigned to: a cache that evicts the least
/// recently used. Only what every application has read may be evicted, because an application looks
/// a key event up in the keymap as it is when it reads the event, not as it was when it was sent.
class SlotPool {
 public:
  explicit SlotPool(size_t slots) : _slots(slots) {}

  size_t size() const { return _slots.size(); }
  Keysym at(size_t slot) const { return _slots[slot].keysym; }
  std::optional<size_t> find(Keysym keysym) const;
  /// `time` grows with every use.
  void use(size_t slot, uint64_t time) { _slots[slot].lastUse = time; }

  /// Assigns an empty slot; absent when there is none.
  std::optional<size_t> takeEmpty(Keysym keysym);
  /// Evicts the least recently used of the slots whose last use was not after `read` and that need
  /// not stay, and assigns it; absent when there is none.
  std::optional<size_t> takeOldest(Keysym keysym, uint64_t read,
                                   const std::function<bool(size_t slot)>& mustStay);

 private:
  struct Slot {
    Keysym keysym = kNoKeysym;
    uint64_t lastUse = 0;
  };
  std::optional<size_t> fill(std::optional<size_t> slot, Keysym keysym);

  std::vector<Slot> _slots;
  std::unordered_map<Keysym, size_t> _places;
};

}  // namespace tapdeck::x11
