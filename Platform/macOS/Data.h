#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tapdeck::platform {

/// A copy of the bytes; absent for nil. Any thread.
std::optional<std::vector<uint8_t>> bytesFromData(NSData* _Nullable data);

}  // namespace tapdeck::platform
