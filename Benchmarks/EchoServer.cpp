#include "Benchmarks/EchoServer.h"

#include <unistd.h>

#include <stdexcept>

#include "Platform/Linux/EngineProtocol/Protocol.h"

namespace tapdeck::benchmarks {
namespace {

void sendBack(SoupWebsocketConnection* socket, gint, GBytes* message, gpointer) {
  gsize size = 0;
  const void* data = g_bytes_get_data(message, &size);
  soup_websocket_connection_send_binary(socket, data, size);
}

void accept(SoupServer*, SoupServerMessage*, const char*, SoupWebsocketConnection* socket,
            gpointer) {
  // the connection is its own once nobody else holds it; it goes when the client closes it
  g_object_ref(socket);
  g_signal_connect(socket, "message", G_CALLBACK(sendBack), nullptr);
  g_signal_connect(socket, "closed", G_CALLBACK(g_object_unref), nullptr);
}

}  // namespace

EchoServer::EchoServer()
    : _context(g_main_context_new()),
      _loop(g_main_loop_new(_context, FALSE)),
      _server(SOUP_SERVER(g_object_new(SOUP_TYPE_SERVER, nullptr))) {
  g_main_context_push_thread_default(_context);
  std::string subprotocol = standin::kSubprotocol;
  char* protocols[] = {subprotocol.data(), nullptr};
  soup_server_add_websocket_handler(_server, "/engine", nullptr, protocols, &accept, nullptr,
                                    nullptr);
  const bool listens =
      soup_server_listen_local(_server, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr) != FALSE;
  g_main_context_pop_thread_default(_context);
  if (!listens) throw std::runtime_error("the echo server cannot listen");
  GSList* addresses = soup_server_get_uris(_server);
  const auto port = static_cast<uint16_t>(g_uri_get_port(static_cast<GUri*>(addresses->data)));
  g_slist_free_full(addresses, reinterpret_cast<GDestroyNotify>(g_uri_unref));
  _session = {"http://127.0.0.1:" + std::to_string(port) + "/", port, "none", getpid()};
  _thread = std::thread([this] { run(); });
}

EchoServer::~EchoServer() {
  g_main_loop_quit(_loop);
  _thread.join();
  g_object_unref(_server);
  g_main_loop_unref(_loop);
  g_main_context_unref(_context);
}

void EchoServer::run() {
  g_main_context_push_thread_default(_context);
  g_main_loop_run(_loop);
  g_main_context_pop_thread_default(_context);
}

}  // namespace tapdeck::benchmarks
