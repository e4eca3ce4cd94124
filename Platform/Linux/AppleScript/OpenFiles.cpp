#include "Platform/Linux/AppleScript/OpenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

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

bool isRegular(int descriptor) {
  struct stat state {};
  return fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode);
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

}  // namespace

OpenFiles::~OpenFiles() {
  for (const auto& [number, file] : _files) ::close(file.descriptor);
}

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
  const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
  if (descriptor < 0) {
    const bool isMissing = errno == ENOENT;
    fail(isMissing ? kFileNotFound : kNoPermission,
         isMissing ? "File not found:" : "File cannot be opened:", file);
  }
  if (!isRegular(descriptor)) {
    ::close(descriptor);
    fail(kNoPermission, "No ordinary file:", file);
  }
  _files[++_last] = {path, descriptor};
  return _last;
}

void OpenFiles::setSize(const Value& file, int64_t size) {
  const auto found = find(file);
  const bool isSet = size >= 0 && ftruncate(found->second.descriptor, size) == 0;
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
  const auto found = find(file);
  ::close(found->second.descriptor);
  _files.erase(found);
}

}  // namespace tapdeck::applescript
