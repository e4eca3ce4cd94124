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

namespace tapdeck::x11 {

/// The keycodes that this program remaps for a while: spare ones, to which the characters of typed
/// text are assigned, and those of US keys that the user's layout lacks, which get one group more.
/// One thread at a time.
class BorrowedKeys {
 public:
  /// Changes the map through `output`, on which keys are sent too, so that both stay in order.
  /// Restores the mappings that a process before this one left changed.
  BorrowedKeys(Connection& output, InputSender& sender, KeyboardMonitor& monitor);
  BorrowedKeys(const BorrowedKeys&) = delete;
  BorrowedKeys& operator=(const BorrowedKeys&) = delete;

  /// Reads the events about changes of the keymap by others, such as the user's choice of another
  /// layout. Such a change ends all borrowing, and nothing of the old keymap is restored over it.
  /// False when the server is gone.
  bool followChanges();
  /// The keymap without our remapping.
  const Keymap& layout() const { return _layout; }
  bool isBorrowing() const { return !_originals.empty(); }
  bool isBorrowed(Keycode code) const { return _originals.contains(code); }
  /// The number of groups, those that our remapping added included.
  int groups() const { return _current.groups(); }
  /// Whether what is borrowed could be given back after a kill; nothing is borrowed otherwise.
  bool mayBorrow() { return isBorrowing() || _sender.canKeepMappings(); }

  /// A keycode and the group in which it gives the keysym.
  struct AssignedKey {
    Keycode code;
    uint8_t group;
  };
  std::optional<AssignedKey> assignedKey(Keysym keysym) const;
  /// Where a US key is that the layout lacks; absent until it is assigned.
  std::optional<RealKey> usKey(const UsKey& key) const;
  /// To be called before each use, so that what is in use is evicted last.
  void markUsed(Keysym keysym);

  /// The keysyms and US keys that need a keycode, in the order in which they are typed.
  struct Request {
    std::vector<Keysym> text;
    std::vector<UsKey> keys;
  };
  /// Whether that would take keys away from other keysyms, whose key events applications may not
  /// have read yet.
  bool wouldEvict(const Request& request) const;
  /// Assigns as many keys as there are, in one change of the keymap. The caller has made sure that
  /// applications have read what was sent before (see `wouldEvict`). False when nothing new could
  /// be assigned.
  bool assign(const Request& request);
  /// Restores the user's keymap.
  void giveBack();

 private:
  /// Each adds to `mappings`; false when nothing new could be assigned.
  bool assignText(const std::vector<Keysym>& text, KeyMappings& mappings);
  bool assignKeys(std::vector<UsKey> keys, KeyMappings& mappings);
  void send(const KeyMappings& mappings, NotifyAs notifyAs);
  bool chooseTextCodes();
  std::vector<Keycode> withoutGrabbed(std::vector<Keycode> codes);
  AssignedKey keyAt(size_t slot) const;
  KeyMapping textKeyMapping(size_t key) const;
  void restore(const KeyMappings& originals);
  void forget();
  bool isIntact(const Keymap& fetched) const;
  void adopt(Keymap fetched);

  Connection& _output;
  InputSender& _sender;
  KeyboardMonitor& _monitor;
  Keymap _layout;
  /// The keymap on the server, our remapping included.
  Keymap _current;
  KeyMappings _originals;
  std::vector<Keycode> _textCodes;
  SlotPool _text{0};
  /// By unshifted keysym.
  std::map<Keysym, RealKey> _usKeys;
  uint64_t _useCount = 0;
};

}  // namespace tapdeck::x11
