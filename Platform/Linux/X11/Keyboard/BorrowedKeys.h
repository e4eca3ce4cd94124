#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/InputSender.h"
#include "Platform/Linux/X11/Keyboard/KeyPlan.h"
#include "Platform/Linux/X11/Keyboard/KeyboardMonitor.h"
#include "Platform/Linux/X11/Keyboard/Keymap.h"
#include "Platform/Linux/X11/Keyboard/KeymapChange.h"
#include "Platform/Linux/X11/Keyboard/SlotPool.h"

namespace tapdeck::quartz {

/// What typing borrows from the keyboard's map: keycodes that hardly anyone uses, for text, and a
/// further group of the keys where a US keyboard has what the layout lacks. One thread at a time.
class BorrowedKeys {
 public:
  /// Changes the map through `output`, on which the keys are sent too, so that both keep their
  /// order. Puts back what a process before this one left.
  BorrowedKeys(Connection& output, InputSender& sender, KeyboardMonitor& monitor);
  BorrowedKeys(const BorrowedKeys&) = delete;
  BorrowedKeys& operator=(const BorrowedKeys&) = delete;

  /// Takes note of what others did to the map, such as the user's choice of another layout. A new
  /// map ends all borrowing: nothing of the old one is put back over it. False when the server is
  /// gone.
  bool followChanges();
  /// The map as the user has it.
  const Keymap& layout() const { return _layout; }
  bool isBorrowing() const { return !_originals.empty(); }
  bool isBorrowed(Keycode code) const { return _originals.contains(code); }
  /// How many groups the keyboard has now, those of the borrowed keys included.
  int groups() const { return _now.groups(); }

  /// A keycode and the group in which it gives the keysym.
  struct AssignedKey {
    Keycode code;
    uint8_t group;
  };
  std::optional<AssignedKey> assignedKey(Keysym keysym) const;
  /// The key that was given to one that the layout lacks.
  std::optional<RealKey> usKey(const UsKey& key) const;
  /// To be called before each use, so that what is in use is evicted last.
  void markUsed(Keysym keysym);

  /// What keys are to be assigned to, the sooner needed the earlier.
  struct Request {
    std::vector<Keysym> text;
    std::vector<UsKey> keys;
  };
  /// Whether that takes keys from keysyms which applications may not have read yet.
  bool wouldEvict(const Request& request) const;
  /// Assigns as many keys as there are, in one change of the map. All earlier uses count as read.
  /// False when nothing that had no key could get one.
  bool assign(const Request& request);
  /// The keymap is what it was before.
  void giveBack();

 private:
  /// Each adds to `mappings`; false when nothing that had no key could get one.
  bool assignText(const std::vector<Keysym>& text, KeyMappings& mappings);
  bool assignKeys(std::vector<UsKey> keys, KeyMappings& mappings);
  void send(const KeyMappings& mappings, ToldAs toldAs);
  bool chooseTextCodes();
  std::vector<Keycode> withoutGrabbed(std::vector<Keycode> codes);
  AssignedKey keyAt(size_t slot) const;
  KeyMapping textKeyMapping(size_t key) const;
  void putBack(const KeyMappings& originals);
  void forget();
  bool isIntact(const Keymap& fetched) const;
  void adopt(Keymap fetched);

  Connection& _output;
  InputSender& _sender;
  KeyboardMonitor& _monitor;
  Keymap _layout;
  /// As it is on the server, what is borrowed included.
  Keymap _now;
  KeyMappings _originals;
  std::vector<Keycode> _textCodes;
  SlotPool _text{0};
  /// By unshifted keysym.
  std::map<Keysym, RealKey> _usKeys;
  uint64_t _time = 0;
};

}  // namespace tapdeck::quartz
