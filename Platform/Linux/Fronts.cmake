pkg_check_modules(FRONT_GLIB REQUIRED IMPORTED_TARGET glib-2.0 gio-2.0 gio-unix-2.0)
pkg_check_modules(GTKMM REQUIRED IMPORTED_TARGET gtkmm-3.0)
pkg_check_modules(FRONT_XCB REQUIRED IMPORTED_TARGET xcb)

# The user's settings; apart because Quartz asks them too.
tapdeck_library(tapdeck_usersettings
  SOURCES Permissions.cpp
  LINKS PkgConfig::FRONT_GLIB)

# The fronts of the Objective-C frameworks.
tapdeck_library(tapdeck_platform
  SOURCES Clock.cpp Pasteboard.cpp ProcessInfo.cpp Queues.cpp SelectionReader.cpp Workspace.cpp
  LINKS tapdeck_front tapdeck_quartz tapdeck_usersettings PkgConfig::GTKMM PkgConfig::FRONT_GLIB
        PkgConfig::FRONT_XCB)
