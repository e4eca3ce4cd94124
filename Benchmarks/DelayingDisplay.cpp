#include "Benchmarks/DelayingDisplay.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <vector>

namespace tapdeck::benchmarks {
namespace {

using Clock = std::chrono::steady_clock;

std::string socketPath(const std::string& display) {
  return "/tmp/.X11-unix/X" + display.substr(1, display.find('.') - 1);
}

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

template <typename Call>
int socketFor(const std::string& path, Call call) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_un address = addressOf(path);
  if (socket >= 0 &&
      call(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    return socket;
  }
  if (socket >= 0) ::close(socket);
  return -1;
}

/// Finds the replies in what the server sends (X11 protocol, encoding of the setup, of replies,
/// errors and events).
class ReplyCounter {
 public:
  int add(const uint8_t* bytes, size_t count) {
    int replies = 0;
    while (count > 0) {
      if (_skip > 0) {
        const size_t skipped = std::min(_skip, count);
        _skip -= skipped;
        bytes += skipped;
        count -= skipped;
        continue;
      }
      _head[_filled++] = *bytes++;
      --count;
      if (_filled < headSize()) continue;
      if (_isSetUp) {
        replies += _head[0] == kReply ? 1 : 0;
        const bool isLonger = _head[0] == kReply || (_head[0] & 0x7f) == kGenericEvent;
        uint32_t words = 0;
        std::memcpy(&words, _head.data() + 4, sizeof words);
        _skip = 32 - headSize() + (isLonger ? size_t{4} * words : 0);
      } else {
        uint16_t words = 0;
        std::memcpy(&words, _head.data() + 6, sizeof words);
        _skip = size_t{4} * words;
        _isSetUp = true;
      }
      _filled = 0;
    }
    return replies;
  }

 private:
  static constexpr uint8_t kReply = 1;
  static constexpr uint8_t kGenericEvent = 35;
  static constexpr size_t headSize() { return 8; }

  std::array<uint8_t, 8> _head{};
  size_t _filled = 0;
  size_t _skip = 0;
  bool _isSetUp = false;
};

}  // namespace

/// One client's connection and the one to the server that was made for it.
class DelayingDisplay::Client {
 public:
  Client(int client, int server, std::chrono::microseconds delay, std::atomic<uint64_t>& roundTrips)
      : _client(client),
        _server(server),
        _delay(delay),
        _roundTrips(roundTrips),
        _requests([this] { passRequests(); }),
        _reader([this] { readServer(); }),
        _writer([this] { writeClient(); }) {}

  ~Client() {
    ::shutdown(_client, SHUT_RDWR);
    ::shutdown(_server, SHUT_RDWR);
    for (auto* thread : {&_requests, &_reader, &_writer}) thread->join();
    ::close(_client);
    ::close(_server);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

 private:
  struct Chunk {
    Clock::time_point due;
    std::vector<uint8_t> bytes;
  };

  /// Descriptors that come with requests (shared memory) go along.
  void passRequests() {
    std::array<uint8_t, 65536> bytes;
    alignas(cmsghdr) std::array<char, 512> control;
    for (;;) {
      iovec part{bytes.data(), bytes.size()};
      msghdr message{};
      message.msg_iov = &part;
      message.msg_iovlen = 1;
      message.msg_control = control.data();
      message.msg_controllen = control.size();
      const ssize_t count = ::recvmsg(_client, &message, MSG_CMSG_CLOEXEC);
      if (count <= 0) break;
      _hasAsked = true;
      part.iov_len = static_cast<size_t>(count);
      while (part.iov_len > 0) {
        const ssize_t sent = ::sendmsg(_server, &message, MSG_NOSIGNAL);
        if (sent <= 0) break;
        part.iov_base = static_cast<uint8_t*>(part.iov_base) + sent;
        part.iov_len -= static_cast<size_t>(sent);
        closeDescriptors(message);
        message.msg_control = nullptr;
        message.msg_controllen = 0;
      }
    }
    ::shutdown(_server, SHUT_RDWR);
  }

  static void closeDescriptors(msghdr& message) {
    for (cmsghdr* each = CMSG_FIRSTHDR(&message); each != nullptr;
         each = CMSG_NXTHDR(&message, each)) {
      if (each->cmsg_type != SCM_RIGHTS) continue;
      const size_t count = (each->cmsg_len - CMSG_LEN(0)) / sizeof(int);
      for (size_t i = 0; i < count; ++i) {
        int descriptor = -1;
        std::memcpy(&descriptor, CMSG_DATA(each) + i * sizeof(int), sizeof descriptor);
        ::close(descriptor);
      }
    }
  }

  void readServer() {
    ReplyCounter replies;
    std::array<uint8_t, 65536> bytes;
    for (;;) {
      const ssize_t count = ::recv(_server, bytes.data(), bytes.size(), 0);
      const size_t size = count > 0 ? static_cast<size_t>(count) : 0;
      if (replies.add(bytes.data(), size) > 0 && _hasAsked.exchange(false)) ++_roundTrips;
      const std::lock_guard lock(_mutex);
      // an empty one is the end
      _waiting.push_back({Clock::now() + _delay, {bytes.data(), bytes.data() + size}});
      _changed.notify_one();
      if (size == 0) return;
    }
  }

  void writeClient() {
    for (;;) {
      std::unique_lock lock(_mutex);
      _changed.wait(lock, [this] { return !_waiting.empty(); });
      const Chunk chunk = std::move(_waiting.front());
      _waiting.pop_front();
      lock.unlock();
      if (_delay.count() > 0) std::this_thread::sleep_until(chunk.due);
      if (chunk.bytes.empty()) break;
      size_t done = 0;
      while (done < chunk.bytes.size()) {
        const ssize_t sent =
            ::send(_client, chunk.bytes.data() + done, chunk.bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0) break;
        done += static_cast<size_t>(sent);
      }
    }
    ::shutdown(_client, SHUT_RDWR);
  }

  const int _client;
  const int _server;
  const std::chrono::microseconds _delay;
  std::atomic<uint64_t>& _roundTrips;
  std::atomic<bool> _hasAsked = false;
  std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<Chunk> _waiting;
  std::thread _requests;
  std::thread _reader;
  std::thread _writer;
};

DelayingDisplay::DelayingDisplay(const std::string& display, std::chrono::microseconds delay)
    : _server(socketPath(display)), _delay(delay) {
  constexpr int kFirst = 300;
  constexpr int kLast = 399;
  for (int number = kFirst; _listener < 0 && number <= kLast; ++number) {
    _name = ":" + std::to_string(number);
    _path = socketPath(_name);
    _listener = socketFor(_path, ::bind);
  }
  if (_listener < 0 || ::listen(_listener, SOMAXCONN) != 0) {
    throw std::runtime_error("no display number is free for the delaying display");
  }
  _thread = std::thread([this] { accept(); });
}

DelayingDisplay::~DelayingDisplay() {
  ::shutdown(_listener, SHUT_RDWR);
  _thread.join();
  ::close(_listener);
  ::unlink(_path.c_str());
}

void DelayingDisplay::accept() {
  for (;;) {
    const int client = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) return;
    const int server = socketFor(_server, ::connect);
    if (server < 0) {
      ::close(client);
      continue;
    }
    _clients.emplace_back(client, server, _delay, _roundTrips);
  }
}

}  // namespace tapdeck::benchmarks
