# Tapdeck.app: the process entry and the classes that the main interface file names, over the host.
include(MacosApplication)

add_executable(Tapdeck MACOSX_BUNDLE main.mm AppDelegate.mm MainFlutterWindowMac.mm)
tapdeck_objective_cxx(Tapdeck)
target_link_libraries(Tapdeck PRIVATE tapdeck_runner tapdeck_platform)
set_target_properties(Tapdeck PROPERTIES
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/Resources/Info.plist.in
  MACOSX_BUNDLE_GUI_IDENTIFIER ${TAPDECK_BUNDLE_IDENTIFIER}
  MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
  MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION})

tapdeck_interface_file(Tapdeck Resources/MainMenu.xib)

get_target_property(frameworks tapdeck_flutter TAPDECK_FRAMEWORKS)
tapdeck_embed_frameworks(Tapdeck ${frameworks})

set(entitlements ${CMAKE_CURRENT_SOURCE_DIR}/Resources/Tapdeck.entitlements)
set_property(TARGET Tapdeck APPEND PROPERTY LINK_DEPENDS ${entitlements})
tapdeck_sign(Tapdeck $<TARGET_BUNDLE_DIR:Tapdeck> --entitlements ${entitlements})
