#include "Platform/Linux/Media/SoundOutput.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <optional>

#include "Platform/Linux/Media/MediaError.h"

namespace tapdeck::media {
namespace {

constexpr std::chrono::seconds kLimit{1};
constexpr int kFull = 100;

struct Output {
  uint32_t index;
  pa_cvolume volume;
  bool isMuted;
};

struct Release {
  void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
  void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
  void operator()(pa_context* context) const {
    pa_context_disconnect(context);
    pa_context_unref(context);
  }
};

/// One connection to the server, with one deadline for all that is done over it.
class SoundServer {
 public:
  SoundServer() {
    if (pa_context_connect(_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return;
    waitWhile([this] {
      const auto state = pa_context_get_state(_context.get());
      return PA_CONTEXT_IS_GOOD(state) != 0 && state != PA_CONTEXT_READY;
    });
  }

  std::optional<Output> defaultOutput() {
    std::optional<Output> found;
    if (!isReady()) return found;
    const auto receive = [](pa_context*, const pa_sink_info* sink, int isLast,
                            void* data) noexcept {
      if (isLast != 0 || sink == nullptr) return;
      *static_cast<std::optional<Output>*>(data) = {sink->index, sink->volume, sink->mute != 0};
    };
    finish(pa_context_get_sink_info_by_name(_context.get(), "@DEFAULT_SINK@", receive, &found));
    return found;
  }

  bool setVolume(const Output& output, const pa_cvolume& volume) {
    return succeeds([&](bool& isDone) {
      return pa_context_set_sink_volume_by_index(_context.get(), output.index, &volume, confirm,
                                                 &isDone);
    });
  }

  bool setMuted(const Output& output, bool isMuted) {
    return succeeds([&](bool& isDone) {
      return pa_context_set_sink_mute_by_index(_context.get(), output.index, isMuted, confirm,
                                               &isDone);
    });
  }

 private:
  static void confirm(pa_context*, int success, void* isDone) noexcept {
    *static_cast<bool*>(isDone) = success != 0;
  }

  bool isReady() const { return pa_context_get_state(_context.get()) == PA_CONTEXT_READY; }

  template <typename Start>
  bool succeeds(Start start) {
    bool isDone = false;
    finish(start(isDone));
    return isDone;
  }

  /// Cancels what does not end in time, so that its callback comes no more.
  void finish(pa_operation* started) {
    const std::unique_ptr<pa_operation, Release> operation(started);
    if (operation == nullptr) return;
    waitWhile([&] { return pa_operation_get_state(operation.get()) == PA_OPERATION_RUNNING; });
    pa_operation_cancel(operation.get());
  }

  template <typename Condition>
  void waitWhile(Condition condition) {
    using namespace std::chrono;
    while (condition()) {
      const auto left = duration_cast<microseconds>(_deadline - steady_clock::now()).count();
      if (left <= 0) return;
      if (pa_mainloop_prepare(_loop.get(), static_cast<int>(left)) < 0 ||
          pa_mainloop_poll(_loop.get()) < 0 || pa_mainloop_dispatch(_loop.get()) < 0) {
        return;
      }
    }
  }

  std::chrono::steady_clock::time_point _deadline = std::chrono::steady_clock::now() + kLimit;
  std::unique_ptr<pa_mainloop, Release> _loop{pa_mainloop_new()};
  std::unique_ptr<pa_context, Release> _context{
      pa_context_new(pa_mainloop_get_api(_loop.get()), "Tapdeck")};
};

}  // namespace

Volume soundOutputVolume() {
  const auto output = SoundServer().defaultOutput();
  if (!output) return {};
  const double part = static_cast<double>(pa_cvolume_max(&output->volume)) / PA_VOLUME_NORM;
  return {static_cast<int>(std::lround(std::min(part, 1.0) * kFull)), output->isMuted};
}

void setSoundOutputVolume(const Volume& volume) {
  SoundServer server;
  auto output = server.defaultOutput();
  bool isDone = output.has_value();
  const bool staysAbove =
      isDone && volume.level == kFull && pa_cvolume_max(&output->volume) > PA_VOLUME_NORM;
  if (isDone && volume.level && !staysAbove) {
    const double part = double(*volume.level) / kFull;
    pa_cvolume_scale(&output->volume, static_cast<pa_volume_t>(std::lround(part * PA_VOLUME_NORM)));
    isDone = server.setVolume(*output, output->volume);
  }
  if (isDone && volume.muted) isDone = server.setMuted(*output, *volume.muted);
  if (!isDone) {
    throw MediaError(MediaError::Kind::failed, "The sound output cannot be changed.");
  }
}

}  // namespace tapdeck::media
