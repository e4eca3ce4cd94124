#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/InputSender.h"
#include "Platform/Linux/X11/Keyboard/KeyPlan.h"
#include "Platform/Linux/X11/Keyboard/Keymap.h"
#include "Platform/Linux/X11/Keyboard/KeymapChange.h"
#include "Platform/Linux/X11/Keyboard/SlotPool.h"

namespace tapdeck::quartz {

/// The keycodes that typing borrows from the keyboard's map: most of them are text keys, the others
/// stand in for keys that the layout lacks. One thread at a time.
class BorrowedKeys {
 public:
  /// Changes the map through `output`, on which the keys are sent too, so that both keep their
  /// order. Puts back what a process before this one left.
  BorrowedKeys(Connection& output, InputSender& sender);
  BorrowedKeys(const BorrowedKeys&) = delete;
  BorrowedKeys& operator=(const BorrowedKeys&) = delete;

  /// Takes note of what others did to the map, such as the user's choice of another layout. A new
  /// map ends all borrowing: nothing of the old one is put back over it. False when the server is
  /// gone.
  bool followChanges();
  /// The map as the user has it.
  const Keymap& layout() const { return _layout; }
  bool isBorrowing() const { return !_originals.empty(); }
  /// Nothing is borrowed that could not be given back after a kill.
  bool mayBorrow() { return isBorrowing() || _sender.canKeepMeanings(); }

  struct TextPlace {
    Keycode code;
    uint8_t group;
  };
  std::optional<TextPlace> textPlace(Keysym keysym) const;
  std::optional<Keycode> substitute(const UsKey& key) const;
  /// To be told before each use.
  void useText(Keysym keysym);
  void useSubstitute(const UsKey& key);

  /// What is to get a place, the sooner needed the earlier.
  struct Wanted {
    std::vector<Keysym> text;
    std::vector<UsKey> keys;
    /// Keycodes that are pressed: they stay what they are.
    std::bitset<256> held;
  };
  /// Whether that takes places away from what applications may not have read yet.
  bool takesPlacesAway(const Wanted& wanted) const;
  /// Gives places, as many as there are, in one change of the map. All earlier uses count as read.
  /// False when not even the first could get one.
  bool place(const Wanted& wanted);
  /// The keymap is what it was before.
  void giveBack();

 private:
  bool borrow();
  void choose();
  std::vector<Keycode> withoutGrabbed(std::vector<Keycode> codes);
  TextPlace placeOf(size_t slot) const;
  KeyMeaning textMeaning(size_t key) const;
  void putBack(const KeyMeanings& originals);
  void forget();
  bool isIntact(const Keymap& fetched) const;
  void adopt(Keymap fetched);

  Connection& _output;
  InputSender& _sender;
  Connection _events;
  uint8_t _firstEvent = 0;
  Keymap _layout;
  /// As it is on the server, what is borrowed included.
  Keymap _now;
  KeyMeanings _originals;
  std::vector<Keycode> _textCodes;
  std::vector<Keycode> _substituteCodes;
  SlotPool _text{0};
  SlotPool _substitutes{0};
  uint64_t _time = 0;
};

}  // namespace tapdeck::quartz
