#include "Platform/Linux/X11/Capture/SegmentPool.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <memory>

#include "Platform/Linux/Support/FileDescriptor.h"

namespace tapdeck::x11 {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;
constexpr int kMadviseCollapse = 25;  // MADV_COLLAPSE, which older C libraries do not name

constexpr size_t kSizeStep = size_t{1} << 20;

bool isOnThisComputer(xcb_connection_t* connection) {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  return getsockname(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr*>(&address),
                     &length) == 0 &&
         address.ss_family == AF_UNIX;
}

/// Whether the server takes memory by file descriptor (MIT-SHM 1.2). The number of a System V
/// segment may name another one for a server on another computer or in another container.
bool takesDescriptors(const Connection& connection) {
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_shm_id);
  if (extension == nullptr || extension->present == 0) return false;
  const auto version =
      connection.wait(xcb_shm_query_version(connection.get()), xcb_shm_query_version_reply);
  return version != nullptr && (version->major_version > 1 ||
                                (version->major_version == 1 && version->minor_version >= 2));
}

/// Null when there is no memory.
std::shared_ptr<uint8_t> map(const FileDescriptor& file, size_t size) {
  if (ftruncate(file.get(), static_cast<off_t>(size)) != 0) return nullptr;
  size_t reserved = size + kHugePage;
  void* place =
      mmap(nullptr, reserved, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (place == MAP_FAILED) return nullptr;
  const std::shared_ptr<void> reservation(place,
                                          [reserved](void* memory) { munmap(memory, reserved); });
  void* aligned = std::align(kHugePage, size, place, reserved);
  if (mmap(aligned, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE | MAP_FIXED, file.get(),
           0) == MAP_FAILED) {
    return nullptr;
  }
  // With small pages a tenth of a frame's time, here and in the server, goes into page table walks.
  // Where the kernel has no huge pages left, the small ones stay.
  madvise(aligned, size - size % kHugePage, kMadviseCollapse);
  return {reservation, static_cast<uint8_t*>(aligned)};
}

}  // namespace

SegmentPool::SegmentPool(Connection& connection)
    : _connection(connection),
      _isOffered(isOnThisComputer(connection.get()) && takesDescriptors(connection)) {}

SegmentPool::~SegmentPool() {
  for (const Segment& segment : _segments) xcb_shm_detach(_connection.get(), segment.number);
  xcb_flush(_connection.get());
}

std::optional<Segment> SegmentPool::take(size_t size) {
  const Segment* best = nullptr;
  for (const Segment& segment : _segments) {
    const bool serves = segment.memory.use_count() == 1 && segment.size >= size;
    if (serves && (best == nullptr || segment.size < best->size)) best = &segment;
  }
  if (best != nullptr) return *best;
  return _isOffered ? make(size) : std::nullopt;
}

std::optional<Segment> SegmentPool::make(size_t size) {
  // else a frame that grows step by step would leave a segment of each size behind
  dropUnheld();
  size = (size + kSizeStep - 1) / kSizeStep * kSizeStep;
  FileDescriptor file(memfd_create("tapdeck-screen", MFD_CLOEXEC));
  if (!file.isOpen()) return std::nullopt;
  Segment segment{map(file, size), 0, size};
  if (segment.memory == nullptr) return std::nullopt;
  segment.number = xcb_generate_id(_connection.get());
  // XCB closes the descriptor, whether this succeeds or not
  const auto request =
      xcb_shm_attach_fd_checked(_connection.get(), segment.number, file.release(), 0);
  const Received<xcb_generic_error_t> refused(xcb_request_check(_connection.get(), request));
  if (refused != nullptr) _isOffered = false;
  if (refused != nullptr || !_connection.isAlive()) return std::nullopt;
  _segments.push_back(segment);
  return segment;
}

void SegmentPool::dropUnheld() {
  std::erase_if(_segments, [this](const Segment& segment) {
    if (segment.memory.use_count() > 1) return false;
    xcb_shm_detach(_connection.get(), segment.number);
    return true;
  });
}

}  // namespace tapdeck::x11
