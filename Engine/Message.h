#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Engine/SharedBytes.h"

namespace tapdeck::codec {

/// An encoded message. It lies in pieces: long byte arrays are shared with the values that they
/// come from, not copied.
class Message {
 public:
  /// Adds a copy of the bytes.
  void append(std::span<const uint8_t> bytes);
  /// Adds the bytes where they are.
  void share(const SharedBytes& bytes);
  /// Makes room for so many more bytes that are copied.
  void reserve(size_t count) { _copied.reserve(_copied.size() + count); }

  size_t size() const { return _copied.size() + _sharedSize; }
  /// In their order; valid until this is changed.
  std::vector<std::span<const uint8_t>> pieces() const;
  /// The same in one piece.
  std::vector<uint8_t> joined() &&;

 private:
  struct Insertion {
    /// How much of what is copied comes before it.
    size_t place;
    SharedBytes bytes;
  };

  std::vector<uint8_t> _copied;
  std::vector<Insertion> _shared;
  size_t _sharedSize = 0;
};

}  // namespace tapdeck::codec
