# Keys and text on the live keyboard, read back from real applications.
pkg_check_modules(TYPING_TESTS REQUIRED IMPORTED_TARGET gtkmm-3.0 gio-2.0 xcb xcb-xkb)

add_executable(typing_text_view TypingTextView.cpp)
target_link_libraries(typing_text_view PRIVATE tapdeck_options PkgConfig::TYPING_TESTS)

add_executable(typing_tests
  ApplicationProcess.cpp Observer.cpp TypingClient.cpp TypingKeyboard.cpp TypingTest.cpp TypingText.cpp)
target_link_libraries(typing_tests PRIVATE tapdeck_runner_input tapdeck_platform tapdeck_quartz
                                           PkgConfig::TYPING_TESTS GTest::gtest)
target_compile_definitions(typing_tests PRIVATE QT_VIEW="${CMAKE_CURRENT_SOURCE_DIR}/TypingQtView.py")
add_dependencies(typing_tests typing_text_view)

# a desktop for each application, so that they can run side by side
foreach(client textview qtview terminal)
  add_test(NAME typing_tests.${client}
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop
                   $<TARGET_FILE:typing_tests> ${client})
  set_tests_properties(typing_tests.${client} PROPERTIES LABELS desktop TIMEOUT 300)
endforeach()

pkg_check_modules(KEYS_TESTS REQUIRED IMPORTED_TARGET xcb xcb-xkb xkbcommon xkbcommon-x11 glib-2.0)
add_executable(keys_tests ApplicationProcess.cpp KeysTest.cpp Observer.cpp TypingKeyboard.cpp)
target_link_libraries(keys_tests PRIVATE tapdeck_runner_input tapdeck_platform tapdeck_quartz
                                         PkgConfig::KEYS_TESTS GTest::gmock)
add_test(NAME keys_tests
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop $<TARGET_FILE:keys_tests>)
set_tests_properties(keys_tests PROPERTIES LABELS desktop TIMEOUT 120)
