#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Engine/UIEngine.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"

namespace tapdeck {

namespace standin {
class Server;
}

/// The UI engine's place on Linux: serves the Console page over HTTP and carries the method
/// channels over WebSocket, in the messages of EngineProtocol. Lives on the thread of the default
/// GLib main context, which must be the main thread.
class StandInEngine final : public UIEngine {
 public:
  using Options = standin::EngineOptions;
  using Peer = standin::EnginePeer;
  using Device = standin::EngineDevice;

  /// Starts to listen and writes session.json. Throws StandInEngineError.
  static std::shared_ptr<StandInEngine> start(const Options& options);
  ~StandInEngine() override;

  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) override;
  void invokeMethod(const std::string& channel, const std::string& method,
                    const Value& arguments) override;
  bool registerPlugin(const std::string& className) override;

  /// Listens on another IP address, at the same port, and ends the connections that came in over
  /// what is not listened on any more (close code 4003). Throws StandInEngineError and goes on as
  /// before.
  void listenOn(const std::string& address);
  const std::string& address() const;

  /// Whether connections over the network are encrypted (those to 127.0.0.1 are not). A change ends
  /// them (close code 4003). Throws StandInEngineError, with nothing changed.
  void setEncrypted(bool isEncrypted);
  bool isEncrypted() const;
  /// Of the certificate, as browsers show it; empty while nothing is encrypted.
  std::string fingerprint() const;

  /// The page's addresses with the run's token in the fragment, the best one for people first;
  /// more than one when the engine listens on every interface.
  std::vector<std::string> pageAddresses() const;
  std::vector<Peer> peers() const;
  /// How many attempts to connect had a wrong token, since the start.
  size_t failedLogins() const;
  /// Calls `changed` when what the functions above and below tell may have changed: after each
  /// connect, disconnect and attempt with a wrong token, after each change of the engine's settings
  /// and of this computer's network. Replaces what was set before; an empty one ends it.
  void observe(std::function<void()> changed);

  /// In the order of pairing.
  std::vector<Device> devices() const;
  /// Ends a connection, or all of a device's; the page does not come back by itself.
  void disconnect(standin::ConnectionNumber connection);
  void disconnectDevice(const std::string& device);
  /// Ends the device's connections and refuses it from now on. Throws std::runtime_error when that
  /// cannot be written down.
  void forgetDevice(const std::string& device);

  /// Ends every connection, letting go of what each still holds, stops listening and removes
  /// session.json. Done by the destructor too.
  void stop();

 private:
  explicit StandInEngine(std::shared_ptr<standin::Server> server);
  std::shared_ptr<standin::Server> _server;
};

}  // namespace tapdeck
