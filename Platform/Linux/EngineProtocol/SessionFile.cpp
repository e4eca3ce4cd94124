#include "Platform/Linux/EngineProtocol/SessionFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tapdeck {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLongestFile = size_t{64} << 10;

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : _descriptor(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (_descriptor >= 0) ::close(_descriptor);
  }
  int get() const { return _descriptor; }
  bool isOpen() const { return _descriptor >= 0; }

 private:
  int _descriptor;
};

std::string reason(int errorNumber) {
  return std::generic_category().message(errorNumber);
}

std::optional<fs::path> directoryIn(const char* variable) {
  const char* value = std::getenv(variable);
  // A relative path would name another file for each working directory.
  if (value == nullptr || *value != '/') return std::nullopt;
  return fs::path(value);
}

/// Under the shared temporary directory anybody can put a folder or a link of this name first.
void claimDirectory(const fs::path& directory) {
  if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) {
    throw std::runtime_error("Cannot create " + directory.string() + ": " + reason(errno));
  }
  struct stat status = {};
  if (::lstat(directory.c_str(), &status) != 0) {
    throw std::runtime_error("Cannot look at " + directory.string() + ": " + reason(errno));
  }
  if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) {
    throw std::runtime_error(directory.string() +
                             " is not a folder of this user; remove it or set XDG_RUNTIME_DIR.");
  }
  if ((status.st_mode & 07777) != 0700 && ::chmod(directory.c_str(), 0700) != 0) {
    throw std::runtime_error("Cannot make " + directory.string() + " private: " + reason(errno));
  }
}

bool writeAll(int descriptor, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    done += static_cast<size_t>(count);
  }
  return true;
}

std::optional<std::string> readOwnFile(const fs::path& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) return std::nullopt;
  std::string text(kLongestFile, '\0');
  const ssize_t count = ::read(file.get(), text.data(), text.size());
  if (count < 0) return std::nullopt;
  text.resize(static_cast<size_t>(count));
  return text;
}

std::optional<Session> parse(const std::string& text) {
  const auto json = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object()) return std::nullopt;
  try {
    const auto port = json.at("port").get<int64_t>();
    Session session{json.at("url").get<std::string>(), static_cast<uint16_t>(port),
                    json.at("token").get<std::string>(), json.at("pid").get<int>()};
    if (port < 1 || port > UINT16_MAX || session.pid < 1) return std::nullopt;
    return session;
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}

}  // namespace

fs::path sessionFilePath() {
  if (const auto runtime = directoryIn("XDG_RUNTIME_DIR")) {
    return *runtime / "tapdeck" / "session.json";
  }
  const fs::path temporary = directoryIn("TMPDIR").value_or("/tmp");
  return temporary / ("tapdeck-" + std::to_string(::geteuid())) / "session.json";
}

void writeSession(const Session& session) {
  const fs::path path = sessionFilePath();
  claimDirectory(path.parent_path());
  const nlohmann::ordered_json json = {
      {"url", session.url}, {"port", session.port}, {"token", session.token}, {"pid", session.pid}};
  std::string temporary = path.string() + ".XXXXXX";
  // mkostemp creates the file with mode 0600 and follows no link.
  const FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) {
    throw std::runtime_error("Cannot write in " + path.parent_path().string() + ": " +
                             reason(errno));
  }
  if (!writeAll(file.get(), json.dump() + "\n") || ::rename(temporary.c_str(), path.c_str()) != 0) {
    const int errorNumber = errno;
    ::unlink(temporary.c_str());
    throw std::runtime_error("Cannot write " + path.string() + ": " + reason(errorNumber));
  }
}

std::optional<Session> readSession() {
  const auto text = readOwnFile(sessionFilePath());
  return text ? parse(*text) : std::nullopt;
}

void removeSession(int pid) {
  const auto session = readSession();
  if (session && session->pid == pid) ::unlink(sessionFilePath().c_str());
}

}  // namespace tapdeck
