#pragma once

#include <libsoup/soup.h>

#include <string>
#include <string_view>

namespace tapdeck {

/// A server on loopback, served by the default main context. "/cover" is five bytes, "/missing" has
/// the same with the status 404, "/endless" 33 MiB; "/hangs" is never answered.
class CoverServer {
 public:
  CoverServer() : _server(soup_server_new(nullptr, nullptr)) {
    soup_server_add_handler(_server, nullptr, answer, this, nullptr);
    soup_server_listen_local(_server, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
  }
  ~CoverServer() {
    soup_server_disconnect(_server);
    g_object_unref(_server);
  }
  CoverServer(const CoverServer&) = delete;
  CoverServer& operator=(const CoverServer&) = delete;

  std::string address(const std::string& path) const {
    GSList* uris = soup_server_get_uris(_server);
    const std::string port = std::to_string(g_uri_get_port(static_cast<GUri*>(uris->data)));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    return "http://127.0.0.1:" + port + path;
  }

 private:
  static void answer(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*,
                     gpointer) {
    const std::string_view place(path);
    if (place == "/hangs") {
      soup_server_message_pause(message);
      return;
    }
    std::string body = place == "/endless" ? std::string(33 << 20, 'x') : "cover";
    soup_server_message_set_status(message, place == "/missing" ? 404 : 200, nullptr);
    soup_server_message_set_response(message, "image/jpeg", SOUP_MEMORY_COPY, body.data(),
                                     body.size());
  }

  SoupServer* _server;
};

}  // namespace tapdeck
