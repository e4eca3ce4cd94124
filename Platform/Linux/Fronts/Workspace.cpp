#include "Platform/Workspace.h"

#include <gio/gio.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::platform {

namespace {

/// One that RFC 3986 allows in a URL; g_uri_split itself takes others too.
bool isURLCharacter(char character) {
  constexpr std::string_view never = "\"<>\\^`{|}";
  return character > ' ' && character < '\x7f' && never.find(character) == std::string_view::npos;
}

/// Where the addresses of the Mac's privacy settings lead here: to the host's own switches.
std::optional<permissions::Permission> permissionBehind(std::string_view address) {
  constexpr std::string_view privacy =
      "x-apple.systempreferences:com.apple.preference.security?Privacy_";
  if (!address.starts_with(privacy)) return std::nullopt;
  const auto pane = address.substr(privacy.size());
  if (pane == "Accessibility") return permissions::Permission::control;
  if (pane == "ScreenCapture") return permissions::Permission::screenCapture;
  return std::nullopt;
}

void finishLaunch(GObject*, GAsyncResult* result, gpointer) noexcept {
  g_app_info_launch_default_for_uri_finish(result, nullptr);
}

}  // namespace

std::optional<URL> urlWithString(const std::string& text) {
  const bool parses = !text.empty() && std::all_of(text.begin(), text.end(), isURLCharacter) &&
                      g_uri_split(text.c_str(), G_URI_FLAGS_NONE, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr);
  if (!parses) return std::nullopt;
  return URL{text};
}

std::optional<std::string> schemeOf(const URL& url) {
  char* scheme = nullptr;
  g_uri_split(url.text.c_str(), G_URI_FLAGS_NONE, &scheme, nullptr, nullptr, nullptr, nullptr,
              nullptr, nullptr, nullptr);
  const glib::Text owned(scheme);
  if (scheme == nullptr) return std::nullopt;
  // GLib gives it in lower case
  return url.text.substr(0, std::strlen(scheme));
}

void openURL(const URL& url) {
  if (const auto permission = permissionBehind(url.text)) {
    permissions::promptUser(*permission);
    return;
  }
  g_app_info_launch_default_for_uri_async(url.text.c_str(), nullptr, nullptr, finishLaunch,
                                          nullptr);
}

}  // namespace tapdeck::platform
