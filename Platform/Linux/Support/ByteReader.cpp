#include "Platform/Linux/Support/ByteReader.h"

namespace tapdeck {

std::span<const uint8_t> ByteReader::bytes(size_t count) {
  _isGood = _isGood && count <= _bytes.size() - _at;
  if (!_isGood) return {};
  const auto next = _bytes.subspan(_at, count);
  _at += count;
  return next;
}

uint32_t ByteReader::number(size_t size) {
  const auto digits = bytes(size);
  uint32_t value = 0;
  for (size_t i = 0; i < digits.size(); ++i) {
    value = value << 8 | digits[_order == std::endian::big ? i : size - 1 - i];
  }
  return value;
}

}  // namespace tapdeck
