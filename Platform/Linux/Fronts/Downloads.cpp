#include "Platform/Downloads.h"

#include <libsoup/soup.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/Linux/Support/HandOver.h"

namespace tapdeck::platform {
namespace {

using glib::Object;

using Bytes = std::vector<uint8_t>;

constexpr size_t kMaxBytes = size_t{32} << 20;
constexpr size_t kChunk = size_t{64} << 10;
/// For the whole download, however slowly a server sends.
constexpr guint kMaxSeconds = 60;

/// The thread on which every download runs, in a main loop of its own.
GMainContext* downloadContext() {
  static GMainContext* const context = [] {
    GMainContext* own = g_main_context_new();
    g_thread_unref(g_thread_new(
        "downloads",
        [](gpointer data) noexcept -> gpointer {
          auto* loopContext = static_cast<GMainContext*>(data);
          g_main_context_push_thread_default(loopContext);
          g_main_loop_run(g_main_loop_new(loopContext, FALSE));
          return nullptr;
        },
        own));
    return own;
  }();
  return context;
}

/// One download; lives from its start to its completion, on the download thread.
class Download {
 public:
  Download(std::string address, double timeoutInterval, DataCompletion completed)
      : _address(std::move(address)),
        _timeoutInterval(timeoutInterval),
        _completed(std::move(completed)) {}
  Download(const Download&) = delete;
  Download& operator=(const Download&) = delete;

  static gboolean start(gpointer self) noexcept {
    takeOver(self);
    static_cast<Download*>(self)->start();
    return G_SOURCE_REMOVE;
  }

 private:
  void start() {
    _message.reset(soup_message_new(SOUP_METHOD_GET, _address.c_str()));
    if (_message == nullptr) return finish(std::nullopt);
    _session.reset(soup_session_new_with_options(
        "timeout", static_cast<guint>(std::ceil(_timeoutInterval)), nullptr));
    g_signal_connect(_message.get(), "restarted", G_CALLBACK(redirected), this);
    _limit.reset(g_timeout_source_new_seconds(kMaxSeconds));
    g_source_set_callback(_limit.get(), timedOut, this, nullptr);
    g_source_attach(_limit.get(), downloadContext());
    soup_session_send_async(_session.get(), _message.get(), G_PRIORITY_DEFAULT, _cancellable.get(),
                            answered, this);
  }

  /// A download that began over TLS does not go on without it.
  static void redirected(SoupMessage* message, gpointer self) noexcept {
    const auto* download = static_cast<Download*>(self);
    const bool wasSecure = download->_address.starts_with("https:");
    if (wasSecure && std::string_view(g_uri_get_scheme(soup_message_get_uri(message))) != "https") {
      g_cancellable_cancel(download->_cancellable.get());
    }
  }

  static gboolean timedOut(gpointer self) noexcept {
    g_cancellable_cancel(static_cast<Download*>(self)->_cancellable.get());
    return G_SOURCE_CONTINUE;
  }

  static void answered(GObject* session, GAsyncResult* result, gpointer self) noexcept {
    auto* download = static_cast<Download*>(self);
    download->_stream.reset(soup_session_send_finish(SOUP_SESSION(session), result, nullptr));
    if (download->_stream == nullptr) return download->finish(std::nullopt);
    download->readOn();
  }

  void readOn() {
    g_input_stream_read_async(_stream.get(), _chunk.data(), _chunk.size(), G_PRIORITY_DEFAULT,
                              _cancellable.get(), chunkRead, this);
  }

  static void chunkRead(GObject* stream, GAsyncResult* result, gpointer self) noexcept {
    auto* download = static_cast<Download*>(self);
    download->take(g_input_stream_read_finish(G_INPUT_STREAM(stream), result, nullptr));
  }

  void take(gssize count) {
    if (count < 0) return finish(std::nullopt);
    if (count == 0) return finish(std::move(_data));
    const auto size = static_cast<size_t>(count);
    if (_data.size() + size > kMaxBytes) return finish(std::nullopt);
    _data.insert(_data.end(), _chunk.begin(), _chunk.begin() + count);
    readOn();
  }

  void finish(std::optional<Bytes> data) {
    const std::unique_ptr<Download> self(this);
    g_cancellable_cancel(_cancellable.get());
    _completed(std::move(data));
  }

  std::string _address;
  double _timeoutInterval;
  DataCompletion _completed;
  Object<GCancellable> _cancellable{g_cancellable_new()};
  Object<SoupSession> _session;
  Object<SoupMessage> _message;
  Object<GInputStream> _stream;
  glib::Source _limit;
  std::array<uint8_t, kChunk> _chunk{};
  Bytes _data;
};

}  // namespace

void startDataTask(const URL& url, double timeoutInterval, DataCompletion completed) {
  auto* const download = new Download(url.text, timeoutInterval, std::move(completed));
  handOver(download);
  g_main_context_invoke(downloadContext(), Download::start, download);
}

}  // namespace tapdeck::platform
