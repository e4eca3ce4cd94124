#include "Platform/Linux/StandInEngine/FrameHeader.h"

#include <limits>

namespace tapdeck::standin {
namespace {

constexpr uint8_t kFinalBinary = 0x82;
/// Above this a length follows in 16 or 64 bits, the highest first.
constexpr size_t kMaxShortLength = 125;
constexpr uint8_t kLengthIn16Bits = 126;
constexpr uint8_t kLengthIn64Bits = 127;

}  // namespace

FrameHeader::FrameHeader(size_t payloadSize) : _bytes{kFinalBinary} {
  const bool isShort = payloadSize <= kMaxShortLength;
  const bool fitsIn16Bits = payloadSize <= std::numeric_limits<uint16_t>::max();
  const size_t lengthBytes = isShort ? 0 : fitsIn16Bits ? 2 : 8;
  _bytes[1] = isShort        ? static_cast<uint8_t>(payloadSize)
              : fitsIn16Bits ? kLengthIn16Bits
                             : kLengthIn64Bits;
  _size = 2 + lengthBytes;
  for (size_t i = 0; i < lengthBytes; ++i, payloadSize >>= 8) {
    _bytes[_size - 1 - i] = static_cast<uint8_t>(payloadSize);
  }
}

}  // namespace tapdeck::standin
