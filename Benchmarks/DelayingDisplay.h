#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace tapdeck::benchmarks {

/// An X display that passes everything on to another one, what the server sends after a delay, and
/// counts the round trips that its clients wait for: replies that come after a client has sent
/// something, so that several replies to one batch of requests are one.
class DelayingDisplay {
 public:
  /// `display` is such as ":7", of this machine. Throws std::runtime_error.
  DelayingDisplay(const std::string& display, std::chrono::microseconds delay);
  ~DelayingDisplay();
  DelayingDisplay(const DelayingDisplay&) = delete;
  DelayingDisplay& operator=(const DelayingDisplay&) = delete;

  /// What clients set DISPLAY to.
  const std::string& name() const { return _name; }
  /// Of all clients since the start. Any thread.
  uint64_t roundTrips() const { return _roundTrips; }

 private:
  class Client;
  void accept();

  const std::string _server;
  const std::chrono::microseconds _delay;
  std::string _name;
  std::string _path;
  int _listener = -1;
  std::atomic<uint64_t> _roundTrips = 0;
  std::list<Client> _clients;
  std::thread _thread;
};

}  // namespace tapdeck::benchmarks
