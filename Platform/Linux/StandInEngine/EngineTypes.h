#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace tapdeck {

/// The engine could not start; the text says why and what to do.
class StandInEngineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

namespace standin {

/// Tells a connection from every other one of the process.
using ConnectionNumber = uint64_t;

/// How the engine is to listen.
struct EngineOptions {
  /// The IP address to listen on.
  std::string address = "127.0.0.1";
  /// 0 takes any free port.
  uint16_t port = 8420;
  /// A connection that is silent for this long, and answers no ping, is closed.
  std::chrono::milliseconds silenceLimit = std::chrono::seconds(25);
  /// How long an accepted connection may take to become a WebSocket or to get its answer.
  std::chrono::milliseconds pendingLimit = std::chrono::seconds(10);
  /// Where the paired devices are kept; empty for the user's data folder.
  std::string devicesFile = "";
  /// Whether connections over the network are encrypted.
  bool isEncrypted = false;
  /// Where the certificate for that is kept; empty for the user's data folder.
  std::string certificateFile = "";
  /// Whether a press of a button still waits to be sent, because presses need a pause between them.
  /// No further press is carried out meanwhile, so that other requests do not queue up behind many.
  std::function<bool()> isPressWaiting = {};
};

/// One open connection, for people to read.
struct EnginePeer {
  std::string address;
  std::string userAgent;
  /// For disconnect().
  ConnectionNumber connection;
  /// Then it is one of devices().
  bool isPaired;
};

/// A paired device, for people to read.
struct EngineDevice {
  std::string id;
  std::string name;
  /// Seconds since 1970; now for one that is connected.
  int64_t seen;
  bool isConnected;
};

}  // namespace standin

}  // namespace tapdeck
