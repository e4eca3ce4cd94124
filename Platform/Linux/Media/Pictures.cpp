#include "Platform/Linux/Media/Pictures.h"

#include <fcntl.h>
#include <libsoup/soup.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <memory>

#include "Platform/Linux/Media/Bus.h"
#include "Platform/Linux/Media/MediaError.h"
#include "Platform/Linux/Support/FileDescriptor.h"

namespace tapdeck::media {
namespace {

constexpr size_t kMaxSize = 10'000'000;
constexpr std::chrono::milliseconds kLimit{2500};

[[noreturn]] void fail(const char* what) {
  throw MediaError(MediaError::Kind::notFound, what);
}

/// Takes pieces until there are no more or it is too much. `read` fills a buffer and gives the
/// number of bytes, 0 at the end, below 0 for a failure.
template <typename Read>
std::string readAll(Read read) {
  std::string bytes;
  std::array<char, 65536> buffer{};
  for (;;) {
    const auto count = read(buffer.data(), buffer.size());
    if (count < 0) fail("The picture cannot be read.");
    if (count == 0) return bytes;
    bytes.append(buffer.data(), static_cast<size_t>(count));
    if (bytes.size() > kMaxSize) fail("The picture is too large.");
  }
}

std::string readFileUrl(const std::string& url) {
  char* host = nullptr;
  const glib::Text path(g_filename_from_uri(url.c_str(), &host, nullptr));
  const glib::Text owned(host);
  const bool isHere = path != nullptr && (host == nullptr || g_str_equal(host, "localhost"));
  if (!isHere) fail("The picture’s file is not on this machine.");
  return readPictureFile(path.get());
}

/// RFC 2397.
std::string readData(const std::string& url) {
  constexpr std::string_view kBase64 = ";base64";
  const size_t comma = url.find(',');
  if (comma == std::string::npos) fail("The picture’s address is no data.");
  if (url.size() - comma > kMaxSize * 4 / 3) fail("The picture is too large.");
  const bool isBase64 = std::string_view(url).substr(0, comma).ends_with(kBase64);
  const glib::Bytes unescaped(g_uri_unescape_bytes(url.c_str() + comma + 1, -1, nullptr, nullptr));
  if (unescaped == nullptr) fail("The picture’s address is no data.");
  gsize size = 0;
  const auto* bytes = static_cast<const char*>(g_bytes_get_data(unescaped.get(), &size));
  std::string text = size > 0 ? std::string(bytes, size) : std::string();
  if (!isBase64) return text;
  const glib::Memory<guchar> decoded(g_base64_decode(text.c_str(), &size));
  return {decoded.get(), decoded.get() + size};
}

std::string download(const std::string& url) {
  const glib::Object<SoupMessage> message(soup_message_new("GET", url.c_str()));
  if (message == nullptr) fail("The picture’s address is none.");
  const glib::Object<SoupSession> session(soup_session_new());
  const Deadline deadline(kLimit);
  const glib::Object<GInputStream> stream(
      soup_session_send(session.get(), message.get(), deadline.cancellable(), nullptr));
  if (stream == nullptr || !SOUP_STATUS_IS_SUCCESSFUL(soup_message_get_status(message.get()))) {
    fail("The picture cannot be fetched.");
  }
  return readAll([&](char* buffer, size_t size) {
    return g_input_stream_read(stream.get(), buffer, size, deadline.cancellable(), nullptr);
  });
}

}  // namespace

std::string readPictureFile(const std::string& path) {
  // a pipe would never end, and to open one may wait for ever
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat state {};
  if (!file.isOpen() || fstat(file.get(), &state) != 0 || !S_ISREG(state.st_mode)) {
    fail("The picture’s file cannot be read.");
  }
  return readAll([&file](char* buffer, size_t size) {
    ssize_t count = 0;
    do {
      count = read(file.get(), buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
  });
}

std::string readPicture(const std::string& url) {
  const char* name = g_uri_peek_scheme(url.c_str());  // in lower case
  const std::string_view scheme = name != nullptr ? name : "";
  if (scheme == "file") return readFileUrl(url);
  if (scheme == "data") return readData(url);
  if (scheme == "http" || scheme == "https") return download(url);
  fail("The picture’s address is of no known kind.");
}

}  // namespace tapdeck::media
