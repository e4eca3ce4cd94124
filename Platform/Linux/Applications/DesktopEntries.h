#pragma once

#include <gio/gdesktopappinfo.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/Applications/DesktopFiles.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::applications {

/// One application that is described by a desktop entry and can be started.
struct DesktopEntry {
  /// Its desktop file id, such as "org.gnome.Calculator.desktop": what the host calls its bundle
  /// identifier.
  std::string id;
  std::string path;
  /// In the user's language, UTF-8.
  std::string name;
  bool isUsers = false;
  /// Whether menus show it on this desktop (NoDisplay, OnlyShowIn, NotShowIn).
  bool isShown = false;
  glib::Object<GDesktopAppInfo> info;
};

/// The installed applications: without the entries that are hidden, cannot be read or whose TryExec
/// is missing. Main thread only.
class DesktopEntries {
 public:
  using Entries = std::vector<std::shared_ptr<const DesktopEntry>>;

  /// The only one, brought up to date: files that have changed since the last time are read again.
  static const DesktopEntries& current();

  /// In order of their ids.
  const Entries& all() const { return _all; }
  /// Null when there is none.
  const DesktopEntry* withId(std::string_view id) const;
  const DesktopEntry* atPath(std::string_view path) const;
  /// The application of a window whose class hint holds either text: by StartupWMClass, else by the
  /// id, of which case is ignored. Null when there is none.
  const DesktopEntry* ofWindowClass(std::string_view instance, std::string_view className) const;

 private:
  struct CacheEntry {
    DesktopFile file;
    std::shared_ptr<const DesktopEntry> entry;
  };
  void update();

  std::map<std::string, CacheEntry> _cache;
  std::vector<std::optional<FileStamp>> _programFolders;
  Entries _all;
};

}  // namespace tapdeck::applications
