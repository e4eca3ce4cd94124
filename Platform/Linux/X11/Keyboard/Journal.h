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

/// A small file beside the session's, one for each X display, that holds this record: what a
/// process that was killed could not give back, the next one does. Written before the server is
/// asked. Any thread, one at a time. Where there is no place for the file nothing is kept. The file
/// has its full size from the start, so that a disk that fills up later takes nothing away.
class Journal {
 public:
  /// Of the display that DISPLAY names.
  Journal();
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// What a process left that is no longer; once.
  std::optional<InputRecord> takeLeftOver() const;
  void write(const InputRecord& record);
  /// Tries again to take the file's space where the disk was full; false while it is. The first
  /// time that it is, says so on standard error.
  bool takeSpace();

 private:
  std::filesystem::path _path;
  /// Locked while this process lives; not open when there is none, or another process has it.
  FileDescriptor _file;
  bool _hasSpace = false;
  bool _toldOfFullDisk = false;
  bool _holdsNothing = true;
};

}  // namespace tapdeck::x11
