#include "Tests/Support/Desktop/MediaBusPeer.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace tapdeck::testing {
namespace {

constexpr const char* kPrefix = "org.mpris.MediaPlayer2.";

std::string textOf(GVariant* value) {
  return value != nullptr ? glib::Text(g_variant_print(value, FALSE)).get() : "()";
}

}  // namespace

BusPeer::BusPeer(const char* address, const std::string& name, Answer answer)
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

BusPeer::~BusPeer() {
  g_dbus_connection_remove_filter(bus(), _filter);
  g_dbus_connection_close_sync(bus(), nullptr, nullptr);
}

glib::Variant BusPeer::askBus(const char* method, GVariant* arguments) const {
  return glib::Variant(g_dbus_connection_call_sync(
      bus(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", method, arguments, nullptr,
      G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
}

int BusPeer::connectionNumber() const {
  const std::string name = g_dbus_connection_get_unique_name(bus());
  return std::stoi(name.substr(name.rfind('.') + 1));
}

bool BusPeer::callerIsThere() const {
  const auto reply =
      askBus("NameHasOwner", g_variant_new("(s)", g_dbus_message_get_sender(lastCall().get())));
  gboolean isThere = FALSE;
  g_variant_get(reply.get(), "(b)", &isThere);
  return isThere != FALSE;
}

void BusPeer::refuse(const char* message) {
  send(g_dbus_message_new_method_error_literal(lastCall().get(),
                                               "org.freedesktop.DBus.Error.AccessDenied", message));
}

void BusPeer::announce(const char* path, const char* interface, const char* signal,
                       GVariant* arguments) {
  g_dbus_connection_emit_signal(bus(), nullptr, path, interface, signal, arguments, nullptr);
  g_dbus_connection_flush_sync(bus(), nullptr, nullptr);
}

std::vector<std::string> BusPeer::calls() const {
  const std::lock_guard lock(_mutex);
  return _calls;
}

glib::Object<GDBusMessage> BusPeer::lastCall() const {
  const std::lock_guard lock(_mutex);
  return glib::Object<GDBusMessage>(G_DBUS_MESSAGE(g_object_ref(_lastCall.get())));
}

GDBusMessage* BusPeer::filter(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                              gpointer self) {
  const bool isCall = isIncoming != FALSE &&
                      g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
  if (!isCall) return message;
  static_cast<BusPeer*>(self)->receive(message);
  g_object_unref(message);
  return nullptr;
}

void BusPeer::receive(GDBusMessage* call) {
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
void BusPeer::send(GDBusMessage* message) const {
  const glib::Object<GDBusMessage> owned(message);
  g_dbus_connection_send_message(bus(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
}

ScriptedPlayer::ScriptedPlayer(const std::string& name, std::string status)
    : _status(std::move(status)),
      _peer(std::getenv("DBUS_SESSION_BUS_ADDRESS"), kPrefix + name,
            [this](const std::string& method, GVariant*) { return answer(method); }) {}

void ScriptedPlayer::load(std::map<std::string, std::string> texts) {
  const std::lock_guard lock(_mutex);
  _texts = std::move(texts);
}

void ScriptedPlayer::change(const std::string& status) {
  {
    const std::lock_guard lock(_mutex);
    _status = status;
  }
  GVariantBuilder changed;
  g_variant_builder_init(&changed, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&changed, "{sv}", "PlaybackStatus", g_variant_new_string(status.c_str()));
  _peer.announce("/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties", "PropertiesChanged",
                 g_variant_new("(sa{sv}as)", "org.mpris.MediaPlayer2.Player", &changed, nullptr));
}

GVariant* ScriptedPlayer::answer(const std::string& method) {
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

GVariant* ScriptedPlayer::properties() const {
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

PrivateBus::PrivateBus()
    : ChildProcess({"dbus-daemon", "--session", "--nofork", "--print-address"}) {
  if (!awaitLine()) throw std::runtime_error("no bus: " + errors());
  _address = output();
  _address.pop_back();
}

SoundServer::SoundServer()
    : _address("PULSE_SERVER", ("unix:" + (_folder.path / "pulse").string()).c_str()),
      _server({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--load=module-null-sink",
               "--load=module-native-protocol-unix auth-anonymous=1 socket=" +
                   (_folder.path / "pulse").string()}) {
  if (!eventually([this] { return std::filesystem::exists(_folder.path / "pulse"); })) {
    throw std::runtime_error("no sound server: " + _server.errors());
  }
}

}  // namespace tapdeck::testing
