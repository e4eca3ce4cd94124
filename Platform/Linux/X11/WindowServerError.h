#pragma once

#include <stdexcept>

namespace tapdeck::x11 {

/// The X server cannot be used; the text says why and what to do.
class WindowServerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tapdeck::x11
