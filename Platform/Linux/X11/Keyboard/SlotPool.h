#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::quartz {

/// Which keysym stands on which place of the spare keys. What stands there stays there; where there
/// is no empty place left, what was not used for longest goes, and only when every application has
/// read its last use: an application translates what it reads with the map of that moment, not with
/// the map of the moment of typing.
class SlotPool {
 public:
  explicit SlotPool(size_t slots) : _slots(slots) {}

  size_t size() const { return _slots.size(); }
  Keysym at(size_t slot) const { return _slots[slot].keysym; }
  std::optional<size_t> find(Keysym keysym) const;
  /// `time` grows with every use.
  void use(size_t slot, uint64_t time) { _slots[slot].lastUse = time; }

  /// An empty place, taken for `keysym`.
  std::optional<size_t> takeEmpty(Keysym keysym);
  /// The place of what was not used for longest, up to the time `read`; of places that `mustStay`
  /// not.
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

}  // namespace tapdeck::quartz
