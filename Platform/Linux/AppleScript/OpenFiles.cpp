#include "Platform/Linux/AppleScript/OpenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tapdeck::applescript {
namespace {

constexpr int kFileNotFound = -43;
constexpr int kFileNotOpen = -38;
constexpr int kFileBusy = -49;
constexpr int kInputOutput = -36;
constexpr int kNoPermission = -54;

[[noreturn]] void fail(int number, const std::string& what, const Value& file) {
  throw ScriptError{number, what + " " + quoted(file) + ".", ""};
}

std::string pathOf(const Value& file) {
  const auto* named = file.getIf<File>();
  return named != nullptr ? named->path : asText(file);
}

bool isRegular(const FileDescriptor& file) {
  struct stat state {};
  return fstat(file.get(), &state) == 0 && S_ISREG(state.st_mode);
}

}  // namespace

OpenFiles::Numbered::iterator OpenFiles::find(const Value& file) {
  const auto* number = file.getIf<int64_t>();
  const auto found = number != nullptr
                         ? _files.find(*number)
                         : std::ranges::find_if(_files, [path = pathOf(file)](const auto& each) {
                             return each.second.path == path;
                           });
  if (found == _files.end()) fail(kFileNotOpen, "File not open:", file);
  return found;
}

int64_t OpenFiles::open(const Value& file) {
  const std::string path = pathOf(file);
  const bool isOpen =
      std::ranges::any_of(_files, [&path](const auto& each) { return each.second.path == path; });
  if (isOpen) fail(kFileBusy, "File is already open:", file);
  constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
  FileDescriptor opened(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
  if (!opened.isOpen()) {
    const bool isMissing = errno == ENOENT;
    fail(isMissing ? kFileNotFound : kNoPermission,
         isMissing ? "File not found:" : "File cannot be opened:", file);
  }
  if (!isRegular(opened)) fail(kNoPermission, "No ordinary file:", file);
  _files[++_last] = {path, std::move(opened)};
  return _last;
}

void OpenFiles::setSize(const Value& file, int64_t size) {
  const auto found = find(file);
  const bool isSet = size >= 0 && ftruncate(found->second.descriptor.get(), size) == 0;
  if (!isSet) fail(kInputOutput, "Its size cannot be set:", file);
}

void OpenFiles::write(const Value& data, const Value& file) {
  const auto found = find(file);
  const auto* bytes = data.getIf<Data>();
  if (!writeAll(found->second.descriptor, bytes != nullptr ? bytes->bytes : asText(data))) {
    fail(kInputOutput, "It cannot be written to:", file);
  }
}

void OpenFiles::close(const Value& file) {
  _files.erase(find(file));
}

}  // namespace tapdeck::applescript
