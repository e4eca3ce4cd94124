# The displays' pictures, drawn and written as JPEG, beside what the server says is on the screen.
pkg_check_modules(IMAGES_TESTS REQUIRED IMPORTED_TARGET xcb xcb-render xcb-shm gio-2.0 libturbojpeg)
add_executable(images_tests
  ApplicationProcess.cpp ImagesTest.cpp Observer.cpp PrivateServer.cpp ScreenPainter.cpp)
target_link_libraries(images_tests PRIVATE tapdeck_runner_display tapdeck_window tapdeck_platform
                                           tapdeck_permissions
                                           PkgConfig::IMAGES_TESTS GTest::gtest_main)
add_test(NAME images_tests
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop $<TARGET_FILE:images_tests>)
set_tests_properties(images_tests PROPERTIES LABELS desktop TIMEOUT 300)
