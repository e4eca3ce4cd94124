#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// Memory that this process and the X server both see.
struct Segment {
  /// Whoever uses the segment holds a reference, so that the memory may outlive the connection.
  std::shared_ptr<uint8_t> memory;
  /// Its ID in the protocol (a SHMSEG).
  uint32_t number;
  size_t size;
};

/// Shared memory segments that are used again for later frames: to create one and to touch its
/// pages for the first time takes longer than to grab into it.
class SegmentPool {
 public:
  explicit SegmentPool(Connection& connection);
  ~SegmentPool();
  SegmentPool(const SegmentPool&) = delete;
  SegmentPool& operator=(const SegmentPool&) = delete;

  /// A segment of at least so many bytes whose memory nobody else holds. Absent when the server
  /// shares no memory (it has no MIT-SHM of version 1.2, or is on another computer).
  std::optional<Segment> take(size_t size);

 private:
  std::optional<Segment> make(size_t size);
  void dropUnheld();

  Connection& _connection;
  bool _isOffered;
  std::vector<Segment> _segments;
};

}  // namespace tapdeck::x11
