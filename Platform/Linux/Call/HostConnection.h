#pragma once

#include <libsoup/soup.h>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "Engine/StandardCodec.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck {

/// The host cannot be reached or is gone; the text says so to people, and what to do.
class ConnectionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One WebSocket connection to a running host, as the page has one. Blocking; it runs the default
/// GLib main context while it waits. Main thread only.
class HostConnection {
 public:
  using Deadline = std::optional<std::chrono::steady_clock::time_point>;

  /// Connects; throws ConnectionError when that does not succeed before the deadline.
  HostConnection(const Session& session, Deadline deadline);
  HostConnection(const HostConnection&) = delete;
  HostConnection& operator=(const HostConnection&) = delete;
  ~HostConnection();

  void send(const codec::Bytes& message);
  /// The next message, or nothing when the deadline passes first (without one it waits for ever).
  /// Throws ConnectionError when the host is gone.
  std::optional<codec::Bytes> receive(Deadline deadline);

 private:
  void connect(const Session& session, Deadline deadline);
  void adopt(SoupWebsocketConnection* socket);
  static bool waitUntil(const std::function<bool()>& done, Deadline deadline);
  std::string farewell() const;

  glib::Object<SoupSession> _session;
  glib::Object<SoupWebsocketConnection> _socket;
  std::deque<codec::Bytes> _received;
};

}  // namespace tapdeck
