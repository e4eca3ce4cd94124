#pragma once

#include <string>

#include "Engine/Value.h"

namespace tapdeck {

/// A call on a method channel: the method's name and its arguments (null when there are none).
struct MethodCall {
  std::string method;
  Value arguments;
};

}  // namespace tapdeck
