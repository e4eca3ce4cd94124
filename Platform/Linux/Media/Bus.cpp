#include "Platform/Linux/Media/Bus.h"

#include <algorithm>
#include <filesystem>

#include "Platform/Linux/Media/MediaError.h"

namespace tapdeck::media {
namespace {

// In milliseconds. Together they are little more than the shortest limit that the host sets for a
// script; as long as the bus itself works, only a call takes time.
constexpr int kNamesLimit = 500;
constexpr int kSurveyLimit = 250;
constexpr int kCallLimit = 1000;

bool isAny(const GError& error, GQuark domain, std::initializer_list<int> codes) {
  return error.domain == domain && std::ranges::find(codes, error.code) != codes.end();
}

MediaError describe(GError& error) {
  using Kind = MediaError::Kind;
  if (isAny(error, G_IO_ERROR, {G_IO_ERROR_TIMED_OUT})) {
    return {Kind::timedOut, "The reply did not come in time."};
  }
  const bool isGone = isAny(error, G_DBUS_ERROR,
                            {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                             G_DBUS_ERROR_NO_REPLY, G_DBUS_ERROR_DISCONNECTED}) ||
                      isAny(error, G_IO_ERROR, {G_IO_ERROR_CLOSED, G_IO_ERROR_BROKEN_PIPE});
  if (isGone) return {Kind::notRunning, "The program has ended."};
  g_dbus_error_strip_remote_error(&error);
  return {Kind::failed, error.message};
}

/// The replies to several calls that are made at the same time.
struct PendingReplies {
  struct Reply {
    PendingReplies* all;
    std::string text;
  };

  static void receive(GObject* connection, GAsyncResult* result, gpointer data) noexcept {
    auto* reply = static_cast<Reply*>(data);
    const glib::Variant tuple(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
    if (tuple != nullptr) {
      GVariant* inner = nullptr;
      g_variant_get(tuple.get(), "(v)", &inner);
      const glib::Variant value(inner);
      if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != FALSE) {
        reply->text = g_variant_get_string(value.get(), nullptr);
      }
    }
    --reply->all->missing;
  }

  size_t missing = 0;
  std::vector<Reply> replies;
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
  for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
    const glib::Variant name(g_variant_get_child_value(list.get(), i));
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

std::vector<std::string> Bus::textPropertyOfEach(const std::vector<std::string>& names,
                                                 const char* path, const char* interface,
                                                 const char* property) const {
  const glib::MainContext context(g_main_context_new());
  g_main_context_push_thread_default(context.get());
  PendingReplies pending{.missing = names.size(), .replies = {}};
  pending.replies.assign(names.size(), {&pending, {}});
  for (size_t i = 0; i < names.size(); ++i) {
    g_dbus_connection_call(_connection.get(), names[i].c_str(), path,
                           "org.freedesktop.DBus.Properties", "Get",
                           g_variant_new("(ss)", interface, property), G_VARIANT_TYPE("(v)"),
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, kSurveyLimit, nullptr,
                           PendingReplies::receive, &pending.replies[i]);
  }
  while (pending.missing > 0) g_main_context_iteration(context.get(), TRUE);
  g_main_context_pop_thread_default(context.get());

  std::vector<std::string> texts;
  for (auto& reply : pending.replies) texts.push_back(std::move(reply.text));
  return texts;
}

}  // namespace tapdeck::media
