#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace tapdeck {

/// Owns one reference to a Core Foundation or Quartz object that a Create or Copy function gave,
/// and releases it with CFRelease. May be empty: such functions give null when they fail.
template <typename Reference>
class Owned {
 public:
  explicit Owned(Reference reference) : _reference(reference) {}
  Owned(Owned&& other) noexcept : _reference(std::exchange(other._reference, nullptr)) {}
  Owned& operator=(Owned&& other) noexcept {
    std::swap(_reference, other._reference);
    return *this;
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (_reference != nullptr) CFRelease(_reference);
  }

  Reference get() const { return _reference; }
  explicit operator bool() const { return _reference != nullptr; }

 private:
  Reference _reference;
};

}  // namespace tapdeck
