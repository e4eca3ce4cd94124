#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tapdeck::standin {

/// The header of a WebSocket frame that is a whole binary message from the server, which is not
/// masked (RFC 6455, 5.2).
class FrameHeader {
 public:
  explicit FrameHeader(size_t payloadSize);

  std::span<const uint8_t> bytes() const { return std::span(_bytes).first(_size); }

 private:
  std::array<uint8_t, 10> _bytes{};
  size_t _size;
};

}  // namespace tapdeck::standin
