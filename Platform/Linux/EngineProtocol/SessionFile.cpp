#include "Platform/Linux/EngineProtocol/SessionFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "Platform/Linux/Support/FileDescriptor.h"
#include "Platform/Linux/Support/PrivateFolder.h"

namespace tapdeck {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxFileSize = size_t{64} << 10;

std::string reason(int errorNumber) {
  return std::generic_category().message(errorNumber);
}

std::optional<std::string> readOwnFile(const fs::path& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) return std::nullopt;
  std::string text(kMaxFileSize, '\0');
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
  return runtimeFolder() / "session.json";
}

void writeSession(const Session& session) {
  const fs::path path = sessionFilePath();
  claimPrivateFolder(path.parent_path());
  const nlohmann::ordered_json json = {
      {"url", session.url}, {"port", session.port}, {"token", session.token}, {"pid", session.pid}};
  std::string temporary = path.string() + ".XXXXXX";
  // mkostemp creates the file with mode 0600 and follows no link.
  const FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) {
    throw std::runtime_error("Cannot write in " + path.parent_path().string() + ": " +
                             reason(errno));
  }
  if (!writeAll(file, json.dump() + "\n") || ::rename(temporary.c_str(), path.c_str()) != 0) {
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
