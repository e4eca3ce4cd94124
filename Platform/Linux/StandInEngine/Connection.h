#pragma once

#include <libsoup/soup.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "Engine/Message.h"
#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

inline constexpr size_t kMaxMessage = size_t{1} << 20;
inline constexpr size_t kMaxUnsent = size_t{32} << 20;

/// One page's WebSocket connection. Main thread only, on the default GLib main context.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  struct Events {
    /// With the message's size in bytes.
    std::function<void(Connection&, Request, size_t)> request;
    /// Whether the next request may be read.
    std::function<bool(const Connection&)> mayRead;
    /// Called once, when the connection can carry no more requests: the peer closed or vanished, it
    /// broke the protocol or a bound, or close() was called. Not called by the destructor.
    std::function<void(Connection&)> ended;
  };

  /// An upgraded HTTP connection.
  struct Upgraded {
    glib::Object<GIOStream> stream;
    glib::Object<GSocket> socket;
    GUri* uri;
  };

  /// Takes the connection over. `silenceLimit`: see EngineOptions.
  static std::shared_ptr<Connection> open(Upgraded upgraded, EnginePeer peer,
                                          std::chrono::milliseconds silenceLimit, Events events);
  ~Connection();

  /// Unlike every other connection's in the process.
  ConnectionNumber number() const { return _number; }
  const EnginePeer& peer() const { return _peer; }
  /// At which it arrived; null once that is gone.
  glib::Object<GSocketAddress> localAddress() const {
    return glib::Object<GSocketAddress>(g_socket_get_local_address(_tcp.get(), nullptr));
  }
  /// Sends what it can without waiting; nothing when the connection has ended. Ends the connection
  /// when the peer leaves too much unread.
  void send(const codec::Message& message);
  /// Ends the connection when the peer has closed its side, however much of what it sent before is
  /// not read yet; whether it has ended.
  bool endIfPeerIsGone();
  /// While something is held the peer's silence is noticed after 5 seconds.
  void setHolding(bool isHolding);
  /// Starts the closing handshake with this close code of RFC 6455.
  void close(uint16_t code, const char* reason);

 private:
  Connection(Upgraded upgraded, EnginePeer peer, std::chrono::milliseconds silenceLimit,
             Events events);
  void connectSignals();
  void watchSilence();
  void takeMessage(SoupWebsocketDataType type, GBytes* message);
  void takeError(const GError& error);
  void countSilence();
  void end();

  ConnectionNumber _number;
  EnginePeer _peer;
  std::chrono::milliseconds _silenceLimit;
  Events _events;
  glib::Object<GSocket> _tcp;
  glib::Object<GIOStream> _stream;
  glib::Object<SoupWebsocketConnection> _socket;
  glib::Source _silenceWatch;
  int _silentTicks = 0;
  bool _isHolding = false;
  bool _ended = false;
};

/// Makes the kernel end the connection of a peer that is no longer reachable, after about 20 s.
void enableTcpKeepalive(GSocket* socket);

}  // namespace tapdeck::standin
