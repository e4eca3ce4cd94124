#include "Platform/Linux/Support/FileDescriptor.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tapdeck {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  std::swap(_number, other._number);
  return *this;
}

int FileDescriptor::release() {
  return std::exchange(_number, -1);
}

void FileDescriptor::close() const {
  if (isOpen()) ::close(_number);
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

}  // namespace tapdeck
