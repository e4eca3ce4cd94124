#include "Engine/SharedBytes.h"

#include <algorithm>
#include <utility>

namespace tapdeck {

SharedBytes::SharedBytes(std::vector<uint8_t> bytes) {
  auto owner = std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
  _bytes = *owner;
  _owner = std::move(owner);
}

SharedBytes::SharedBytes(std::shared_ptr<const void> owner, std::span<const uint8_t> bytes)
    : _owner(std::move(owner)), _bytes(bytes) {}

bool operator==(const SharedBytes& a, const SharedBytes& b) {
  return std::ranges::equal(a, b);
}

}  // namespace tapdeck
