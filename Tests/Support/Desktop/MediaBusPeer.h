#pragma once

#include <gio/gio.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

/// Whoever bears a name on a message bus. Answers on a thread of its own, so that the test may wait
/// meanwhile.
class BusPeer {
 public:
  /// The body of the reply, a tuple; null to leave the call unanswered.
  using Answer = std::function<GVariant*(const std::string& method, GVariant* arguments)>;

  BusPeer(const char* address, const std::string& name, Answer answer);
  ~BusPeer();
  BusPeer(const BusPeer&) = delete;
  BusPeer& operator=(const BusPeer&) = delete;

  /// The calls so far, such as "Pause()"; those for properties are left out.
  std::vector<std::string> calls() const;
  /// Which of all the connections of the bus this one is.
  int connectionNumber() const;
  /// Whether who called last is still on the bus.
  bool callerIsThere() const;
  /// Answers the last call, which was left unanswered, by an error.
  void refuse(const char* message);
  /// Sends a signal to everyone who listens.
  void announce(const char* path, const char* interface, const char* signal, GVariant* arguments);
  /// Leaves the bus, as a program does that ends.
  void vanish() { g_dbus_connection_close(bus(), nullptr, nullptr, nullptr); }

 private:
  static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message,
                              gboolean isIncoming, gpointer self);
  GDBusConnection* bus() const { return _connection.get(); }
  glib::Variant askBus(const char* method, GVariant* arguments) const;
  void receive(GDBusMessage* call);
  void send(GDBusMessage* message) const;
  glib::Object<GDBusMessage> lastCall() const;

  Answer _answer;
  glib::Object<GDBusConnection> _connection;
  guint _filter;
  mutable std::mutex _mutex;
  std::vector<std::string> _calls;
  glib::Object<GDBusMessage> _lastCall;
};

/// A media player of the session bus that is as the test says.
class ScriptedPlayer {
 public:
  /// `name` is what follows "org.mpris.MediaPlayer2.".
  explicit ScriptedPlayer(const std::string& name, std::string status = "Playing");

  /// What it plays; the texts by their MPRIS names.
  void load(std::map<std::string, std::string> texts);
  /// Plays, pauses or stops, and tells everyone.
  void change(const std::string& status);
  /// How long it says that is, in microseconds.
  void setLength(uint64_t length) { _length = length; }
  void hang() { _hangs = true; }
  /// It is gone after so many more answers.
  void vanishAfter(int answers) { _answersLeft = answers; }
  std::vector<std::string> calls() const { return _peer.calls(); }
  /// The bus counts its connections.
  int connectionNumber() const { return _peer.connectionNumber(); }

 private:
  GVariant* answer(const std::string& method);
  GVariant* properties() const;

  mutable std::mutex _mutex;
  std::string _status;
  std::map<std::string, std::string> _texts{{"xesam:title", "Song"}};
  std::atomic<uint64_t> _length = 215000000;
  std::atomic<bool> _hangs = false;
  std::atomic<int> _answersLeft = -1;
  BusPeer _peer;
};

/// A message bus of the test's own.
class PrivateBus : public ChildProcess {
 public:
  PrivateBus();
  const std::string& address() const { return _address; }

 private:
  std::string _address;
};

/// A sound server of the test's own with one output that nobody hears, at full volume.
class SoundServer {
 public:
  SoundServer();

 private:
  TemporaryFolder _folder;
  EnvironmentVariable _address;
  ChildProcess _server;
};

}  // namespace tapdeck::testing
