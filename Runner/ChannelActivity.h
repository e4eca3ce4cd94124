#pragma once

#include <memory>

#include "Platform/Activity.h"
#include "Platform/RepeatingTimer.h"

namespace tapdeck {

/// Keeps the system from slowing the process down while the UI engine uses its channels: from a
/// call until three to six minutes after the last one. A phone's user rarely looks at the host's
/// window, and its replies must come at once all the same. Main thread only.
class ChannelActivity {
 public:
  /// One call has come.
  void noteCall();

 private:
  void lookBack();

  std::unique_ptr<platform::Activity> _activity;
  std::unique_ptr<platform::RepeatingTimer> _timer;
  bool _calledSinceLookingBack = false;
};

}  // namespace tapdeck
