#include "Runner/ChannelActivity.h"

namespace tapdeck {
namespace {

constexpr double kSecondsWithoutCalls = 180;

}  // namespace

void ChannelActivity::noteCall() {
  _calledSinceLookingBack = true;
  if (_activity != nullptr) return;
  _activity = std::make_unique<platform::Activity>("A phone controls this computer");
  _timer = std::make_unique<platform::RepeatingTimer>(kSecondsWithoutCalls, [this] { lookBack(); });
}

void ChannelActivity::lookBack() {
  if (_calledSinceLookingBack) {
    _calledSinceLookingBack = false;
    return;
  }
  _timer->invalidate();
  _activity.reset();
}

}  // namespace tapdeck
