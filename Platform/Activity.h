#pragma once

#include <memory>
#include <string>

namespace tapdeck::platform {

/// An NSProcessInfo activity with NSActivityUserInitiatedAllowingIdleSystemSleep: until this object
/// goes, the system does not slow the process down as one that nobody uses (App Nap). A computer
/// that is idle still goes to sleep. Main thread only.
class Activity {
 public:
  /// The reason is shown to who looks for what keeps the computer busy.
  explicit Activity(const std::string& reason);
  Activity(const Activity&) = delete;
  Activity& operator=(const Activity&) = delete;
  ~Activity();

 private:
  struct Token;
  std::unique_ptr<Token> _token;
};

}  // namespace tapdeck::platform
