#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include "Engine/KeyForm.h"
#include "Engine/Value.h"

namespace tapdeck::codec {

/// The message is not one; the codec's functions turn it into an empty result.
class Malformed : public std::exception {};

/// Reads values one after another out of one message, which must outlive it. Every function throws
/// Malformed, and none allocates more than a small multiple of the message's own size.
class Reader {
 public:
  explicit Reader(std::span<const uint8_t> message);

  uint8_t byte();
  Value value();
  bool isAtEnd() const;
  void expectEnd() const;

 private:
  /// A value inside `depth` containers; its form is appended to `key` when it is part of a map key.
  Value read(int depth, KeyForm* key);
  Value element(int depth, KeyForm* key);
  Value leaf(Tag tag);
  Value list(int depth, KeyForm* key);
  Value map(int depth, KeyForm* key);
  size_t enterContainer(int depth, size_t valuesPerEntry);

  std::span<const uint8_t> take(size_t count);
  size_t size();
  void align(size_t to);
  std::string text();
  template <typename T>
  T number();
  template <typename T>
  Value typedList();

  std::span<const uint8_t> _message;
  size_t _offset = 0;
  /// Values that the containers entered so far still have to hold, one byte each at the least.
  size_t _owed = 0;
  uint64_t _serial = 0;
};

}  // namespace tapdeck::codec
