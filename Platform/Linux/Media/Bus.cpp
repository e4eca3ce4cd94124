#include "Platform/Linux/Media/Bus.h"

#include <algorithm>
#include <filesystem>

#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {
namespace {

// In milliseconds. All three together come to little more than what the host gives its shortest
// scripts, and without a fault of the bus itself only the last takes time.
constexpr int kNamesLimit = 500;
constexpr int kSurveyLimit = 250;
constexpr int kCallLimit = 1000;

bool isAny(const GError& error, GQuark domain, std::initializer_list<int> codes) {
  return error.domain == domain && std::ranges::find(codes, error.code) != codes.end();
}

ScriptError describe(GError& error) {
  if (isAny(error, G_IO_ERROR, {G_IO_ERROR_TIMED_OUT})) {
    return {kTimedOut, "AppleEvent timed out.", ""};
  }
  const bool isGone = isAny(error, G_DBUS_ERROR,
                            {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                             G_DBUS_ERROR_NO_REPLY, G_DBUS_ERROR_DISCONNECTED}) ||
                      isAny(error, G_IO_ERROR, {G_IO_ERROR_CLOSED, G_IO_ERROR_BROKEN_PIPE});
  if (isGone) return {kNotRunning, "Application isn’t running.", ""};
  g_dbus_error_strip_remote_error(&error);
  return {kEventFailed, error.message, ""};
}

/// The answers of several that are asked at once.
struct Survey {
  struct Place {
    Survey* survey;
    std::string answer;
  };

  static void receive(GObject* connection, GAsyncResult* result, gpointer data) {
    auto* place = static_cast<Place*>(data);
    const glib::Variant reply(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
    if (reply != nullptr) {
      GVariant* inner = nullptr;
      g_variant_get(reply.get(), "(v)", &inner);
      const glib::Variant value(inner);
      if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != FALSE) {
        place->answer = g_variant_get_string(value.get(), nullptr);
      }
    }
    --place->survey->pending;
  }

  size_t pending = 0;
  std::vector<Place> places;
};

}  // namespace

bool hasBus(GBusType type) {
  if (type != G_BUS_TYPE_SESSION || g_getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr) return true;
  std::error_code error;
  return std::filesystem::exists(std::filesystem::path(g_get_user_runtime_dir()) / "bus", error);
}

Deadline::Deadline(std::chrono::milliseconds atMost)
    : _thread([this, atMost](const std::stop_token& stop) {
        std::unique_lock lock(_mutex);
        _ended.wait_for(lock, stop, atMost, [] { return false; });
        if (!stop.stop_requested()) g_cancellable_cancel(_cancellable.get());
      }) {}

std::optional<Bus> Bus::connect(GBusType type) {
  if (!hasBus(type)) return std::nullopt;
  const Deadline deadline{std::chrono::milliseconds(kCallLimit)};
  GDBusConnection* connection = g_bus_get_sync(type, deadline.cancellable(), nullptr);
  if (connection == nullptr) return std::nullopt;
  g_dbus_connection_set_exit_on_close(connection, FALSE);
  return Bus(connection);
}

std::vector<std::string> Bus::names() const {
  const glib::Variant reply(g_dbus_connection_call_sync(
      _connection.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "ListNames", nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, kNamesLimit, nullptr,
      nullptr));
  std::vector<std::string> names;
  if (reply == nullptr) return names;
  const glib::Variant list(g_variant_get_child_value(reply.get(), 0));
  for (gsize place = 0; place < g_variant_n_children(list.get()); ++place) {
    const glib::Variant name(g_variant_get_child_value(list.get(), place));
    names.emplace_back(g_variant_get_string(name.get(), nullptr));
  }
  std::ranges::sort(names);
  return names;
}

glib::Variant Bus::call(const std::string& name, const char* path, const char* interface,
                        const char* method, GVariant* arguments, const char* replyType) const {
  GError* error = nullptr;
  glib::Variant reply(g_dbus_connection_call_sync(
      _connection.get(), name.c_str(), path, interface, method, arguments,
      G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NO_AUTO_START, kCallLimit, nullptr, &error));
  if (reply != nullptr) return reply;
  const glib::Error failure(error);
  throw describe(*failure);
}

std::vector<std::string> Bus::askAll(const std::vector<std::string>& names, const char* path,
                                     const char* interface, const char* property) const {
  const glib::MainContext context(g_main_context_new());
  g_main_context_push_thread_default(context.get());
  Survey survey{.pending = names.size(), .places = {}};
  survey.places.assign(names.size(), {&survey, {}});
  for (size_t place = 0; place < names.size(); ++place) {
    g_dbus_connection_call(_connection.get(), names[place].c_str(), path,
                           "org.freedesktop.DBus.Properties", "Get",
                           g_variant_new("(ss)", interface, property), G_VARIANT_TYPE("(v)"),
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, kSurveyLimit, nullptr, Survey::receive,
                           &survey.places[place]);
  }
  while (survey.pending > 0) g_main_context_iteration(context.get(), TRUE);
  g_main_context_pop_thread_default(context.get());

  std::vector<std::string> answers;
  for (auto& place : survey.places) answers.push_back(std::move(place.answer));
  return answers;
}

}  // namespace tapdeck::applescript
