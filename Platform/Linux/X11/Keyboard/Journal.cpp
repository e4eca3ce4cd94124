#include "Platform/Linux/X11/Keyboard/Journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Platform/Linux/Support/ByteReader.h"
#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/PrivateFolder.h"

namespace tapdeck::x11 {
namespace {

constexpr uint8_t kFormat = 2;
// room for the mappings of every key, with as many levels as layouts have
constexpr size_t kFileSize = size_t{64} << 10;
// the file begins with the record's length, as its own does not change
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

std::bitset<256> readBits(ByteReader& reader) {
  std::bitset<256> bits;
  for (size_t first = 0; first < bits.size(); first += 8) {
    const uint8_t byte = reader.u8();
    for (size_t bit = 0; bit < 8; ++bit) bits[first + bit] = (byte >> bit & 1) != 0;
  }
  return bits;
}

/// Without actions: only keys that have none are borrowed.
void addMapping(Writer& writer, Keycode code, const KeyMapping& mapping) {
  writer.add(code, 1);
  for (const uint8_t type : mapping.types) writer.add(type, 1);
  writer.add(mapping.groupInfo, 1);
  writer.add(mapping.width, 1);
  for (const Keysym keysym : mapping.keysyms) writer.add(keysym, 4);
}

KeyMapping readMapping(ByteReader& reader) {
  KeyMapping mapping;
  for (uint8_t& type : mapping.types) type = reader.u8();
  mapping.groupInfo = reader.u8();
  mapping.width = reader.u8();
  for (int left = mapping.groups() * mapping.width; left > 0 && reader.isGood(); --left) {
    mapping.keysyms.push_back(reader.u32());
  }
  return mapping;
}

std::string fileName() {
  const char* variable = std::getenv("DISPLAY");
  std::string display = variable == nullptr ? "" : variable;
  // without the screen's number: all screens share one keyboard
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
  const LockChanges& locks = record.locks;
  for (const uint8_t byte : {locks.groups, locks.userGroup, locks.modifiers, locks.userModifiers}) {
    writer.add(byte, 1);
  }
  writer.add(static_cast<uint32_t>(record.mappings.size()), 2);
  for (const auto& [code, mapping] : record.mappings) addMapping(writer, code, mapping);
  return writer.bytes;
}

std::optional<InputRecord> readRecord(const std::vector<uint8_t>& bytes) {
  ByteReader reader(bytes, std::endian::big);
  if (reader.u8() != kFormat) return std::nullopt;
  InputRecord record;
  record.keys = readBits(reader);
  record.buttons = readBits(reader);
  LockChanges& locks = record.locks;
  for (uint8_t* byte : {&locks.groups, &locks.userGroup, &locks.modifiers, &locks.userModifiers}) {
    *byte = reader.u8();
  }
  for (uint16_t left = reader.u16(); left > 0 && reader.isGood(); --left) {
    const Keycode code = reader.u8();
    record.mappings[code] = readMapping(reader);
  }
  if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;
  return record;
}

Journal::Journal() {
  const std::filesystem::path folder = runtimeFolder();
  try {
    claimPrivateFolder(folder);
  } catch (const std::runtime_error&) {
    return;
  }
  _path = folder / fileName();
  FileDescriptor file(
      ::open(_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
  if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;
  _file = std::move(file);
  reserveSpace();
}

Journal::~Journal() {
  if (_file.isOpen() && _holdsNothing) ::unlink(_path.c_str());
}

bool Journal::reserveSpace() {
  if (!_file.isOpen() || _hasSpace) return true;
  const int error = ::posix_fallocate(_file.get(), 0, kFileSize);
  _hasSpace = error == 0;
  if (!_hasSpace && !std::exchange(_hasWarned, true)) {
    warn("there is no space for " + _path.string() + " (" + std::generic_category().message(error) +
         "): text is typed with the keys of the layout alone, and what it lacks is left out.");
  }
  return _hasSpace;
}

std::optional<InputRecord> Journal::readLeftOver() const {
  if (!_file.isOpen()) return std::nullopt;
  std::vector<uint8_t> bytes(kFileSize);
  const ssize_t count = ::pread(_file.get(), bytes.data(), bytes.size(), 0);
  if (count < kSizeBytes) return std::nullopt;
  const size_t size = ByteReader(bytes, std::endian::big).u32();
  if (size > static_cast<size_t>(count) - kSizeBytes) return std::nullopt;
  const auto start = bytes.begin() + kSizeBytes;
  return readRecord({start, start + static_cast<std::ptrdiff_t>(size)});
}

void Journal::write(const InputRecord& record) {
  if (!_file.isOpen() || !reserveSpace()) return;
  const auto content = record.isNothing() ? std::vector<uint8_t>() : writeRecord(record);
  Writer writer;
  writer.add(static_cast<uint32_t>(content.size()), kSizeBytes);
  writer.bytes.insert(writer.bytes.end(), content.begin(), content.end());
  // in one write, so that a kill leaves either the old record or the new one
  const ssize_t written = ::pwrite(_file.get(), writer.bytes.data(), writer.bytes.size(), 0);
  _holdsNothing = content.empty() && written == static_cast<ssize_t>(writer.bytes.size());
}

}  // namespace tapdeck::x11
