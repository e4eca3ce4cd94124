#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tapdeck {

/// Bytes that never change. Copies share one memory, which goes with the last of them; each copy
/// may be used and dropped on a thread of its own.
class SharedBytes {
 public:
  SharedBytes() = default;
  /// Takes the vector's memory over.
  SharedBytes(std::vector<uint8_t> bytes);
  /// Bytes that stay where and as they are for as long as `owner` lives.
  SharedBytes(std::shared_ptr<const void> owner, std::span<const uint8_t> bytes);

  const uint8_t* data() const { return _bytes.data(); }
  size_t size() const { return _bytes.size(); }
  bool empty() const { return _bytes.empty(); }
  const uint8_t* begin() const { return data(); }
  const uint8_t* end() const { return data() + size(); }
  friend bool operator==(const SharedBytes& a, const SharedBytes& b);

 private:
  std::shared_ptr<const void> _owner;
  std::span<const uint8_t> _bytes;
};

}  // namespace tapdeck
