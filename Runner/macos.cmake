# Tapdeck.app: the process entry and the classes that the main interface file names, over the host.
include(MacosApplication)

add_executable(Tapdeck MACOSX_BUNDLE main.mm AppDelegate.mm ConstantsMac.mm MainFlutterWindowMac.mm)
tapdeck_objective_cxx(Tapdeck)
target_link_libraries(Tapdeck PRIVATE tapdeck_runner tapdeck_platform)
# filled in here, so that another setting asks for another signature
set(properties ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
configure_file(Resources/Info.plist.in ${properties})
set_target_properties(Tapdeck PROPERTIES MACOSX_BUNDLE_INFO_PLIST ${properties})
set_property(TARGET Tapdeck APPEND PROPERTY LINK_DEPENDS ${properties})

tapdeck_interface_file(Tapdeck Resources/MainMenu.xib)
tapdeck_icon(Tapdeck Resources/Tapdeck.svg)
foreach(file ${TAPDECK_EXTRA_RESOURCES})
  tapdeck_bundle_resource(Tapdeck ${file})
endforeach()

get_target_property(frameworks tapdeck_flutter TAPDECK_FRAMEWORKS)
tapdeck_embed_frameworks(Tapdeck ${frameworks})
tapdeck_entitlements_to_sign(entitlements)
tapdeck_seal(Tapdeck ${entitlements})
tapdeck_archive(Tapdeck ${entitlements} ${frameworks})
