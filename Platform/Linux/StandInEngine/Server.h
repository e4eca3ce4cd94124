#pragma once

#include <libsoup/soup.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Engine/UIEngine.h"
#include "Platform/Linux/StandInEngine/BackgroundCalls.h"
#include "Platform/Linux/StandInEngine/Clients.h"
#include "Platform/Linux/StandInEngine/Connection.h"
#include "Platform/Linux/StandInEngine/Devices.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"
#include "Platform/Linux/StandInEngine/FailedLogins.h"
#include "Platform/Linux/StandInEngine/Holds.h"
#include "Platform/Linux/StandInEngine/Listener.h"
#include "Platform/Linux/StandInEngine/Page.h"
#include "Platform/Linux/StandInEngine/PendingConnections.h"
#include "Platform/Linux/StandInEngine/Pictures.h"
#include "Platform/Linux/StandInEngine/RequestScheduler.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// What stands behind the engine: the HTTP server, the open connections and the channels' handlers.
/// Shared, because a handler that it calls may let go of the engine.
class Server : public std::enable_shared_from_this<Server> {
 public:
  explicit Server(EngineOptions options);

  /// Listens and writes session.json. Throws StandInEngineError.
  void start();
  void stop();
  void listenOn(const std::string& address);
  const std::string& address() const { return _options.address; }
  void setEncrypted(bool isEncrypted);
  bool isEncrypted() const { return _certificate != nullptr; }
  std::string fingerprint() const;

  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler);
  void invokeMethod(const std::string& channel, const MethodCall& call);
  std::vector<std::string> pageAddresses() const;
  std::vector<EnginePeer> peers() const;
  size_t failedLogins() const { return _failedLogins.total(); }
  void observe(std::function<void()> changed);
  std::vector<EngineDevice> devices() const;
  void disconnect(ConnectionNumber connection);
  void disconnectDevice(const std::string& device);
  void forgetDevice(const std::string& device);

 private:
  using Weak = std::weak_ptr<Server>;

  /// What a query's token or secret opens, and for which device.
  struct Access {
    enum class Kind { granted, wrongToken, forgotten };
    Kind kind;
    std::optional<Device> device;
  };

  void useCertificate();
  void listen();
  void writeSessionFile() const;
  /// Whether what arrived at this address of ours may stay.
  bool isServedAt(GSocketAddress* local) const;
  bool isEncryptedAt(GSocketAddress* local) const;
  void takeIn(glib::Object<GSocketConnection> accepted);
  void admit(SoupServerMessage* message);
  void serve(SoupServerMessage* message, GHashTable* query);
  void servePage(SoupServerMessage* message, std::string_view path) const;
  void serveAccess(SoupServerMessage* message, GHashTable* query);
  void serveUpgrade(SoupServerMessage* message, GHashTable* query);
  /// Answers the message as it stands, which is a refusal, late; 429 where too many wait already.
  void delayRefusal(SoupServerMessage* message);
  void completeUpgrade(SoupServerMessage* message, const std::optional<Device>& device);

  Access accessBy(GHashTable* query) const;
  void answerAboutDevices(const std::shared_ptr<Connection>& connection, const MethodCall& call,
                          Reply reply);
  void pair(const Connection& connection, Clients::Client& client, const MethodCall& call,
            Reply reply);
  void sendCount();
  void endConnections(const std::vector<ConnectionNumber>& numbers, uint16_t code,
                      const char* reason);

  std::shared_ptr<Connection> connectionOf(ConnectionNumber number) const;
  /// A request's turn has come.
  void carryOut(ConnectionNumber number, const Request& request);
  void forward(const std::shared_ptr<Connection>& connection, const Request& request);
  void capture(const std::shared_ptr<Connection>& connection, const MethodCall& call, Reply reply);
  Reply replyTo(const std::shared_ptr<Connection>& connection, const Request& request);
  void forget(const Connection& connection);
  void releaseHolds(const Connection& connection);
  void notifyObserver();
  void watchNetwork();

  EngineOptions _options;
  std::string _token;
  uint16_t _port = 0;
  Page _page;
  glib::Object<SoupServer> _http;
  /// Of the network's connections; null while they are not encrypted.
  glib::Object<GTlsCertificate> _certificate;
  std::unique_ptr<Listener> _listener;
  PendingConnections _pending;
  std::vector<std::shared_ptr<Connection>> _connections;
  std::map<std::string, MethodCallHandler> _handlers;
  Holds _holds;
  RequestScheduler _scheduler;
  BackgroundCalls _background;
  Pictures _pictures;
  FailedLogins _failedLogins;
  Devices _devices;
  Clients _clients;
  size_t _sentCount = 0;
  std::function<void()> _observer;
  /// Of the network monitor.
  gulong _networkSignal = 0;
};

}  // namespace tapdeck::standin
