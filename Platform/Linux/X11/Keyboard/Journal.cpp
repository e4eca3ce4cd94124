#include "Platform/Linux/X11/Keyboard/Journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace tapdeck::x11 {
namespace {

namespace fs = std::filesystem;

constexpr uint8_t kFormat = 1;
// room for every key of a keyboard with all the levels that layouts have
constexpr size_t kFileSize = size_t{64} << 10;
// in front of what is held: how many bytes that is, as the file is always as long
constexpr int kSizeBytes = 4;

/// Numbers, the most significant byte first.
class Writer {
 public:
  void add(uint32_t value, int size) {
    for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
  }
  void add(const std::bitset<256>& bits) {
    for (size_t first = 0; first < bits.size(); first += 8) {
      uint32_t byte = 0;
      for (size_t bit = 0; bit < 8; ++bit) byte |= bits[first + bit] ? 1U << bit : 0;
      add(byte, 1);
    }
  }
  std::vector<uint8_t> bytes;
};

class Reader {
 public:
  explicit Reader(const std::vector<uint8_t>& bytes) : _bytes(bytes) {}
  bool isGood() const { return _good; }
  bool isAtEnd() const { return _at == _bytes.size(); }
  uint32_t number(int size) {
    _good = _good && _bytes.size() - _at >= static_cast<size_t>(size);
    uint32_t value = 0;
    for (int i = 0; i < size && _good; ++i) value = value << 8 | _bytes[_at++];
    return value;
  }
  uint8_t byte() { return static_cast<uint8_t>(number(1)); }
  std::bitset<256> bits() {
    std::bitset<256> bits;
    for (size_t first = 0; first < bits.size(); first += 8) {
      const uint32_t byte = number(1);
      for (size_t bit = 0; bit < 8; ++bit) bits[first + bit] = (byte >> bit & 1) != 0;
    }
    return bits;
  }

 private:
  const std::vector<uint8_t>& _bytes;
  size_t _at = 0;
  bool _good = true;
};

/// Without actions: keys that have some are not borrowed.
void addMapping(Writer& writer, Keycode code, const KeyMapping& mapping) {
  writer.add(code, 1);
  for (const uint8_t type : mapping.types) writer.add(type, 1);
  writer.add(mapping.groupInfo, 1);
  writer.add(mapping.width, 1);
  for (const Keysym keysym : mapping.keysyms) writer.add(keysym, 4);
}

KeyMapping readMapping(Reader& reader) {
  KeyMapping mapping;
  for (uint8_t& type : mapping.types) type = reader.byte();
  mapping.groupInfo = reader.byte();
  mapping.width = reader.byte();
  for (int left = mapping.groups() * mapping.width; left > 0 && reader.isGood(); --left) {
    mapping.keysyms.push_back(reader.number(4));
  }
  return mapping;
}

/// A folder of this user's alone: under the shared temporary directory anybody may have been first.
bool claim(const fs::path& folder) {
  ::mkdir(folder.c_str(), 0700);
  struct stat status = {};
  return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 0077) == 0;
}

fs::path folder() {
  const auto named = [](const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value == '/' ? fs::path(value) : fs::path();
  };
  if (const auto runtime = named("XDG_RUNTIME_DIR"); !runtime.empty()) return runtime / "tapdeck";
  const fs::path temporary = named("TMPDIR");
  return (temporary.empty() ? "/tmp" : temporary) / ("tapdeck-" + std::to_string(::geteuid()));
}

std::string fileName() {
  const char* variable = std::getenv("DISPLAY");
  std::string display = variable == nullptr ? "" : variable;
  // the screen's number is of no account: all screens have one keyboard
  if (const auto dot = display.rfind('.'); dot != std::string::npos && dot > display.rfind(':')) {
    display.resize(dot);
  }
  std::replace_if(
      display.begin(), display.end(),
      [](unsigned char character) { return std::isalnum(character) == 0; }, '-');
  return "held" + display;
}

}  // namespace

std::vector<uint8_t> writeRecord(const InputRecord& record) {
  Writer writer;
  writer.add(kFormat, 1);
  writer.add(record.keys);
  writer.add(record.buttons);
  writer.add(static_cast<uint32_t>(record.mappings.size()), 2);
  for (const auto& [code, mapping] : record.mappings) addMapping(writer, code, mapping);
  return writer.bytes;
}

std::optional<InputRecord> readRecord(const std::vector<uint8_t>& bytes) {
  Reader reader(bytes);
  if (reader.byte() != kFormat) return std::nullopt;
  InputRecord record;
  record.keys = reader.bits();
  record.buttons = reader.bits();
  for (uint32_t left = reader.number(2); left > 0 && reader.isGood(); --left) {
    const Keycode code = reader.byte();
    record.mappings[code] = readMapping(reader);
  }
  if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;
  return record;
}

Journal::Journal() {
  const fs::path place = folder();
  if (!claim(place)) return;
  _path = place / fileName();
  _file = ::open(_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (_file >= 0 && ::flock(_file, LOCK_EX | LOCK_NB) != 0) {
    ::close(_file);
    _file = -1;
  }
  takeSpace();
}

Journal::~Journal() {
  if (_file < 0) return;
  if (_holdsNothing) ::unlink(_path.c_str());
  ::close(_file);
}

bool Journal::takeSpace() {
  if (_file < 0 || _hasSpace) return true;
  const int error = ::posix_fallocate(_file, 0, kFileSize);
  _hasSpace = error == 0;
  if (!_hasSpace && !std::exchange(_toldOfFullDisk, true)) {
    std::fprintf(stderr,
                 "tapdeck: no space for %s (%s): text is typed with the keys of the layout alone, "
                 "and what it lacks is left out\n",
                 _path.c_str(), std::strerror(error));
  }
  return _hasSpace;
}

std::optional<InputRecord> Journal::takeLeftOver() const {
  if (_file < 0) return std::nullopt;
  std::vector<uint8_t> bytes(kFileSize);
  const ssize_t count = ::pread(_file, bytes.data(), bytes.size(), 0);
  if (count < kSizeBytes) return std::nullopt;
  const size_t size = Reader(bytes).number(kSizeBytes);
  if (size > static_cast<size_t>(count) - kSizeBytes) return std::nullopt;
  const auto start = bytes.begin() + kSizeBytes;
  return readRecord({start, start + static_cast<std::ptrdiff_t>(size)});
}

void Journal::write(const InputRecord& record) {
  if (_file < 0 || !takeSpace()) return;
  const auto content = record.isNothing() ? std::vector<uint8_t>() : writeRecord(record);
  Writer writer;
  writer.add(static_cast<uint32_t>(content.size()), kSizeBytes);
  writer.bytes.insert(writer.bytes.end(), content.begin(), content.end());
  // one write: a kill leaves the old state or the new
  const ssize_t written = ::pwrite(_file, writer.bytes.data(), writer.bytes.size(), 0);
  _holdsNothing = content.empty() && written == static_cast<ssize_t>(writer.bytes.size());
}

}  // namespace tapdeck::x11
