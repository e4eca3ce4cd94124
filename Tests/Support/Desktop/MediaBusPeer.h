#pragma once

#include <gio/gio.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

inline constexpr const char* kPrefix = "org.mpris.MediaPlayer2.";

inline std::string textOf(GVariant* value) {
  return value != nullptr ? glib::Text(g_variant_print(value, FALSE)).get() : "()";
}

/// Whoever bears a name on a message bus. Answers on a thread of its own, so that the test may wait
/// meanwhile.
class BusPeer {
 public:
  /// The body of the reply, a tuple; null to leave the call unanswered.
  using Answer = std::function<GVariant*(const std::string& method, GVariant* arguments)>;

  BusPeer(const char* address, const std::string& name, Answer answer)
      : _answer(std::move(answer)),
        _connection(g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr)) {
    if (!_connection) throw std::runtime_error("no bus at " + std::string(address));
    _filter = g_dbus_connection_add_filter(bus(), filter, this, nullptr);
    if (!askBus("RequestName", g_variant_new("(su)", name.c_str(), 0U))) {
      throw std::runtime_error("the name is taken: " + name);
    }
  }
  ~BusPeer() {
    g_dbus_connection_remove_filter(bus(), _filter);
    g_dbus_connection_close_sync(bus(), nullptr, nullptr);
  }
  BusPeer(const BusPeer&) = delete;
  BusPeer& operator=(const BusPeer&) = delete;

  /// The calls so far, such as "Pause()"; those for properties are left out.
  std::vector<std::string> calls() const {
    const std::lock_guard lock(_mutex);
    return _calls;
  }
  /// Which of all the connections of the bus this one is.
  int connectionNumber() const {
    const std::string name = g_dbus_connection_get_unique_name(bus());
    return std::stoi(name.substr(name.rfind('.') + 1));
  }
  /// Whether who called last is still on the bus.
  bool callerIsThere() const {
    const auto reply =
        askBus("NameHasOwner", g_variant_new("(s)", g_dbus_message_get_sender(lastCall().get())));
    gboolean isThere = FALSE;
    g_variant_get(reply.get(), "(b)", &isThere);
    return isThere != FALSE;
  }
  /// Answers the last call, which was left unanswered, by an error.
  void refuse(const char* message) {
    send(g_dbus_message_new_method_error_literal(
        lastCall().get(), "org.freedesktop.DBus.Error.AccessDenied", message));
  }
  /// Sends a signal to everyone who listens.
  void announce(const char* path, const char* interface, const char* signal, GVariant* arguments) {
    g_dbus_connection_emit_signal(bus(), nullptr, path, interface, signal, arguments, nullptr);
    g_dbus_connection_flush_sync(bus(), nullptr, nullptr);
  }
  /// Leaves the bus, as a program does that ends.
  void vanish() { g_dbus_connection_close(bus(), nullptr, nullptr, nullptr); }

 private:
  static GDBusMessage* filter(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                              gpointer self) {
    const bool isCall = isIncoming != FALSE &&
                        g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (!isCall) return message;
    static_cast<BusPeer*>(self)->receive(message);
    g_object_unref(message);
    return nullptr;
  }
  GDBusConnection* bus() const { return _connection.get(); }
  glib::Variant askBus(const char* method, GVariant* arguments) const {
    return glib::Variant(g_dbus_connection_call_sync(
        bus(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
  }
  void receive(GDBusMessage* call) {
    const std::string method = g_dbus_message_get_member(call);
    GVariant* arguments = g_dbus_message_get_body(call);
    if (std::string(g_dbus_message_get_interface(call)) != "org.freedesktop.DBus.Properties") {
      const std::lock_guard lock(_mutex);
      _calls.push_back(method + textOf(arguments));
      _lastCall.reset(G_DBUS_MESSAGE(g_object_ref(call)));
    }
    GVariant* body = _answer(method, arguments);
    if (body == nullptr) return;
    GDBusMessage* reply = g_dbus_message_new_method_reply(call);
    g_dbus_message_set_body(reply, body);
    send(reply);
  }
  /// Takes the message.
  void send(GDBusMessage* message) const {
    const glib::Object<GDBusMessage> owned(message);
    g_dbus_connection_send_message(bus(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                   nullptr);
  }
  glib::Object<GDBusMessage> lastCall() const {
    const std::lock_guard lock(_mutex);
    return glib::Object<GDBusMessage>(G_DBUS_MESSAGE(g_object_ref(_lastCall.get())));
  }

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
  explicit ScriptedPlayer(const std::string& name, std::string status = "Playing")
      : _status(std::move(status)),
        _peer(std::getenv("DBUS_SESSION_BUS_ADDRESS"), kPrefix + name,
              [this](const std::string& method, GVariant*) { return answer(method); }) {}

  /// What it plays; the texts by their MPRIS names.
  void load(std::map<std::string, std::string> texts) {
    const std::lock_guard lock(_mutex);
    _texts = std::move(texts);
  }
  /// Plays, pauses or stops, and tells everyone.
  void change(const std::string& status) {
    {
      const std::lock_guard lock(_mutex);
      _status = status;
    }
    GVariantBuilder changed;
    g_variant_builder_init(&changed, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&changed, "{sv}", "PlaybackStatus", g_variant_new_string(status.c_str()));
    _peer.announce("/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties",
                   "PropertiesChanged",
                   g_variant_new("(sa{sv}as)", "org.mpris.MediaPlayer2.Player", &changed, nullptr));
  }
  /// How long it says that is, in microseconds.
  void setLength(uint64_t length) { _length = length; }
  void hang() { _hangs = true; }
  /// It is gone after so many more answers.
  void vanishAfter(int answers) { _answersLeft = answers; }
  std::vector<std::string> calls() const { return _peer.calls(); }
  /// The bus counts its connections.
  int connectionNumber() const { return _peer.connectionNumber(); }

 private:
  GVariant* answer(const std::string& method) {
    const std::lock_guard lock(_mutex);
    if (_hangs) return nullptr;
    if (_answersLeft == 0) {
      _peer.vanish();
      return nullptr;
    }
    if (_answersLeft > 0) --_answersLeft;
    if (method == "GetAll") return properties();
    if (method == "Get") return g_variant_new("(v)", g_variant_new_string(_status.c_str()));
    return g_variant_new("()");
  }
  GVariant* properties() const {
    GVariantBuilder metadata;
    g_variant_builder_init(&metadata, G_VARIANT_TYPE_VARDICT);
    for (const auto& [key, text] : _texts) {
      g_variant_builder_add(&metadata, "{sv}", key.c_str(), g_variant_new_string(text.c_str()));
    }
    g_variant_builder_add(&metadata, "{sv}", "mpris:length", g_variant_new_uint64(_length));
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&all, "{sv}", "PlaybackStatus", g_variant_new_string(_status.c_str()));
    g_variant_builder_add(&all, "{sv}", "Position", g_variant_new_int64(12500000));
    g_variant_builder_add(&all, "{sv}", "Metadata", g_variant_builder_end(&metadata));
    return g_variant_new("(a{sv})", &all);
  }

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
  PrivateBus() : ChildProcess({"dbus-daemon", "--session", "--nofork", "--print-address"}) {
    if (!awaitLine()) throw std::runtime_error("no bus: " + errors());
    _address = output();
    _address.pop_back();
  }
  const std::string& address() const { return _address; }

 private:
  std::string _address;
};

/// A sound server of the test's own with one output that nobody hears, at full volume.
class SoundServer {
 public:
  SoundServer()
      : _address("PULSE_SERVER", ("unix:" + (_folder.path / "pulse").string()).c_str()),
        _server({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                 "--load=module-null-sink",
                 "--load=module-native-protocol-unix auth-anonymous=1 socket=" +
                     (_folder.path / "pulse").string()}) {
    if (!eventually([this] { return std::filesystem::exists(_folder.path / "pulse"); })) {
      throw std::runtime_error("no sound server: " + _server.errors());
    }
  }

 private:
  TemporaryFolder _folder;
  EnvironmentVariable _address;
  ChildProcess _server;
};

}  // namespace tapdeck::testing
