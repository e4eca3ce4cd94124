#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tapdeck {

/// Reads a message from its start to its end. A read past the end makes the reader bad for good,
/// and every read of a bad one gives zeros or nothing, so that it is enough to look at `isGood`
/// once all is read. The bytes are the caller's and must outlive this.
class ByteReader {
 public:
  explicit ByteReader(std::span<const uint8_t> bytes, std::endian order = std::endian::little)
      : _bytes(bytes), _order(order) {}

  /// How the numbers that follow are laid out, for messages that say so themselves.
  void setOrder(std::endian order) { _order = order; }

  bool isGood() const { return _isGood; }
  bool isAtEnd() const { return _at == _bytes.size(); }
  uint8_t u8() { return static_cast<uint8_t>(number(1)); }
  uint16_t u16() { return static_cast<uint16_t>(number(2)); }
  uint32_t u32() { return number(4); }
  void skip(size_t count) { bytes(count); }
  /// Skips the padding up to the next multiple of `size` bytes from the start.
  void align(size_t size) { skip((size - _at % size) % size); }
  /// The next `count` bytes, where they lie; empty when there are not so many left.
  std::span<const uint8_t> bytes(size_t count);

 private:
  uint32_t number(size_t size);

  std::span<const uint8_t> _bytes;
  std::endian _order;
  size_t _at = 0;
  bool _isGood = true;
};

}  // namespace tapdeck
