#pragma once

#include <string_view>

namespace tapdeck {

/// The owner of one POSIX file descriptor; a negative number stands for none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : _number(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : _number(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { close(); }

  int get() const { return _number; }
  bool isOpen() const { return _number >= 0; }
  /// Leaves the closing to the caller.
  int release();

 private:
  void close() const;

  int _number = -1;
};

/// Writes all of the bytes, however many calls of write() that takes. False, with errno set, when
/// it fails, and then part of them may be written. Blocks; any thread.
bool writeAll(const FileDescriptor& file, std::string_view bytes);

}  // namespace tapdeck
