#pragma once

#include <atomic>

namespace tapdeck::cf {

/// The base of every Core Foundation and Quartz object on Linux: a reference count that starts at
/// one, owned by whoever created the object.
class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;
  virtual bool equals(const Object& other) const { return this == &other; }

  void retain() const { _count.fetch_add(1, std::memory_order_relaxed); }
  /// Deletes the object at the last release.
  void release() const {
    if (_count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  long retainCount() const { return _count.load(std::memory_order_relaxed); }

 protected:
  Object() = default;

 private:
  mutable std::atomic<long> _count = 1;
};

}  // namespace tapdeck::cf
