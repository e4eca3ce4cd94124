#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// Which keysym is assigned to each slot (one group of one spare key): a cache that evicts the
/// least recently used keysym. Only a keysym whose events every application has read may be
/// evicted: an application looks a key event up in the keymap as it is when it reads the event.
class SlotPool {
 public:
  explicit SlotPool(size_t slots) : _slots(slots) {}

  size_t size() const { return _slots.size(); }
  Keysym at(size_t slot) const { return _slots[slot].keysym; }
  std::optional<size_t> find(Keysym keysym) const;
  /// `time` is a number that grows with every use.
  void use(size_t slot, uint64_t time) { _slots[slot].lastUse = time; }

  /// Assigns an empty slot to the keysym; absent when there is none.
  std::optional<size_t> assignEmpty(Keysym keysym);
  /// Assigns to the keysym the least recently used of the slots that were last used at `lastRead`
  /// or before and that need not stay; absent when there is none.
  std::optional<size_t> assignOldest(Keysym keysym, uint64_t lastRead,
                                     const std::function<bool(size_t slot)>& mustStay);

 private:
  struct Slot {
    Keysym keysym = kNoKeysym;
    uint64_t lastUse = 0;
  };
  std::optional<size_t> fill(std::optional<size_t> slot, Keysym keysym);

  std::vector<Slot> _slots;
  std::unordered_map<Keysym, size_t> _slotByKeysym;
};

}  // namespace tapdeck::x11
