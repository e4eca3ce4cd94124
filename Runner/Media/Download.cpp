#include "Runner/Media/Download.h"

#include <memory>
#include <mutex>
#include <utility>

#include "Platform/Downloads.h"
#include "Platform/Queues.h"

namespace tapdeck {
namespace {

constexpr double kRequestTimeLimit = 3.0;
constexpr double kWaitLimit = 3.5;

/// What the waiting thread and the completion have in common, whichever is done first.
struct Download {
  platform::Semaphore completed;
  std::mutex mutex;
  std::optional<std::vector<uint8_t>> data;
};

}  // namespace

std::optional<std::vector<uint8_t>> downloadData(const platform::URL& url) {
  const auto download = std::make_shared<Download>();
  platform::startDataTask(url, kRequestTimeLimit,
                          [download](std::optional<std::vector<uint8_t>> data) {
                            {
                              const std::lock_guard lock(download->mutex);
                              download->data = std::move(data);
                            }
                            download->completed.signal();
                          });
  download->completed.waitFor(kWaitLimit);
  const std::lock_guard lock(download->mutex);
  return std::move(download->data);
}

}  // namespace tapdeck
