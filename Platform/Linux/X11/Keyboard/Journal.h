#pragma once

#include <bitset>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/Support/FileDescriptor.h"
#include "Platform/Linux/X11/Keyboard/KeymapChange.h"

namespace tapdeck::x11 {

/// What this process has locked and unlocked of the keyboard's state (XKB) for a moment, and what
/// the user had locked.
struct LockChanges {
  /// A bit for each group that was locked in place of the user's.
  uint8_t groups = 0;
  uint8_t userGroup = 0;
  /// The real modifiers that were locked or unlocked, and those of them that the user had locked.
  uint8_t modifiers = 0;
  uint8_t userModifiers = 0;

  bool isNothing() const { return groups == 0 && modifiers == 0; }
  friend bool operator==(const LockChanges&, const LockChanges&) = default;
};

/// What this process has to give back at the X server, which keeps it when the process ends.
struct InputRecord {
  /// Pressed keys by keycode, and pressed physical buttons.
  std::bitset<256> keys;
  std::bitset<256> buttons;
  LockChanges locks;
  /// The user's mappings of the keycodes that typing borrows.
  KeyMappings mappings;

  bool isNothing() const {
    return keys.none() && buttons.none() && locks.isNothing() && mappings.empty();
  }
};

std::vector<uint8_t> writeRecord(const InputRecord& record);
/// Absent when the bytes do not hold together.
std::optional<InputRecord> readRecord(const std::vector<uint8_t>& bytes);

/// Keeps the record in a small file beside the session's, one for each X display, so that the next
/// process gives back what a killed one could not. To be written before the server is asked for the
/// change. Where the file cannot be created nothing is kept. It has its full size from the start,
/// so that it can be written when the disk has filled up. One thread at a time.
class Journal {
 public:
  /// For the X display that DISPLAY names.
  Journal();
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// What an earlier process has left in the file, until write() is called; absent when there is
  /// nothing.
  std::optional<InputRecord> readLeftOver() const;
  void write(const InputRecord& record);
  /// Allocates the file's full size, where the disk was too full for it so far; false while it is.
  /// The first failure is reported on standard error.
  bool reserveSpace();

 private:
  std::filesystem::path _path;
  /// Locked (flock) while this process runs; not open when that failed.
  FileDescriptor _file;
  bool _hasSpace = false;
  bool _hasWarned = false;
  bool _holdsNothing = true;
};

}  // namespace tapdeck::x11
