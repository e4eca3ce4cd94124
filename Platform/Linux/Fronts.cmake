pkg_check_modules(FRONT_GLIB REQUIRED IMPORTED_TARGET glib-2.0 gio-2.0 gio-unix-2.0)
pkg_check_modules(GTKMM REQUIRED IMPORTED_TARGET gtkmm-3.0)
pkg_check_modules(FRONT_XCB REQUIRED IMPORTED_TARGET xcb)
pkg_check_modules(FRONT_SOUP REQUIRED IMPORTED_TARGET libsoup-3.0)

# The user's settings; apart because Quartz asks them too.
tapdeck_library(tapdeck_usersettings
  SOURCES KeyFile.cpp FileStamp.cpp Permissions.cpp
  LINKS PkgConfig::FRONT_GLIB)

# The fronts of the Objective-C frameworks.
tapdeck_library(tapdeck_platform
  SOURCES Applications.cpp Applications/BundleFolders.cpp Applications/DesktopEntries.cpp
          Applications/DesktopFiles.cpp Applications/Launch.cpp Applications/ManagedWindows.cpp
          Clock.cpp Downloads.cpp Files.cpp Images.cpp Log.cpp LoginItems.cpp MainBundle.cpp
          Pasteboard.cpp PictureDecoding.cpp ProcessInfo.cpp PropertyLists.cpp Queues.cpp RepeatingTimer.cpp Scripts.cpp
          SelectionReader.cpp Tasks.cpp UserDefaults.cpp Workspace.cpp
  LINKS tapdeck_front tapdeck_engine tapdeck_applescript tapdeck_quartz tapdeck_usersettings
        PkgConfig::GTKMM PkgConfig::FRONT_GLIB PkgConfig::FRONT_SOUP PkgConfig::FRONT_XCB)
