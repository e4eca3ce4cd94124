#pragma once

#include <libsoup/soup.h>

#include <thread>

#include "Platform/Linux/EngineProtocol/SessionFile.h"

namespace tapdeck::benchmarks {

/// A WebSocket server on loopback that sends every message back as it came, by the same library as
/// the host's, in a thread of its own: the least that a call can take.
class EchoServer {
 public:
  EchoServer();
  ~EchoServer();
  EchoServer(const EchoServer&) = delete;
  EchoServer& operator=(const EchoServer&) = delete;

  /// How it is reached, as a host is.
  const Session& session() const { return _session; }

 private:
  void run();

  GMainContext* _context;
  GMainLoop* _loop;
  SoupServer* _server;
  Session _session;
  std::thread _thread;
};

}  // namespace tapdeck::benchmarks
