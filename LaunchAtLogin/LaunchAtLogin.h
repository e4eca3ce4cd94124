#pragma once

#include <optional>
#include <string>

#include "LaunchAtLogin/Notices.h"

namespace tapdeck {

/// Whether the application starts by itself when the user logs in. The setting is the system's:
/// nothing of it is stored here, and every read asks afresh. Main thread only.
class LaunchAtLogin {
 public:
  enum class KeyValueNotice { willChange, didChange };

  /// The process's one, which the channel and the views use; it lives until the process ends.
  static LaunchAtLogin& shared();

  /// True only while the system would start the application; a login item that waits for the user's
  /// approval is not enabled.
  bool isEnabled();

  /// Asks the system to enable or disable the login item, and tells the observers. A failure is
  /// logged, not reported: the next read tells what came of it.
  void setEnabled(bool enabled);

  /// Once per user: carries over what was chosen with the helper application of older versions, and
  /// takes the helper away. Nothing on a system without login-item services.
  void migrateIfNeeded();

  /// Sent before each setting, whatever the value.
  Notices<>& objectWillChange() { return _objectWillChange; }
  /// Sent for the key `isEnabled` around the setting itself.
  Notices<KeyValueNotice>& keyValueNotices() { return _keyValueNotices; }
  /// The values that are set, after each setting. Starts with what `isEnabled` answers at the first
  /// use of the publisher.
  CurrentValuePublisher<bool>& publisher();

 private:
  /// The helper application's bundle identifier, built at its first use.
  const std::string& helperIdentifier();
  bool helperJobIsEnabled();

  Notices<> _objectWillChange;
  Notices<KeyValueNotice> _keyValueNotices;
  std::optional<CurrentValuePublisher<bool>> _publisher;
  std::optional<std::string> _helperIdentifier;
};

}  // namespace tapdeck
