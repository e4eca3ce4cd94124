#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace tapdeck {

// GLib's queues hand an object from one thread to another under locks that the thread sanitizer
// does not see, as GLib is not compiled with it. Both threads tell it here; any other build has
// nothing of this.

/// The object, complete, is about to be put into a queue of GLib's.
inline void handOver([[maybe_unused]] void* object) {
#if defined(__SANITIZE_THREAD__)
  __tsan_release(object);
#endif
}

/// The object has come out of the queue and belongs to this thread.
inline void takeOver([[maybe_unused]] void* object) {
#if defined(__SANITIZE_THREAD__)
  __tsan_acquire(object);
#endif
}

}  // namespace tapdeck
