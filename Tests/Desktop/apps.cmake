pkg_check_modules(APPS_TESTS REQUIRED IMPORTED_TARGET gtkmm-3.0 xcb)

add_executable(apps_tests AppsFixture.cpp AppsIconTest.cpp AppsTest.cpp Observer.cpp)
target_link_libraries(apps_tests PRIVATE
  tapdeck_runner_apps tapdeck_platform PkgConfig::APPS_TESTS GTest::gmock)

add_test(NAME apps_tests
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop $<TARGET_FILE:apps_tests>)
set_tests_properties(apps_tests PROPERTIES LABELS desktop TIMEOUT 120)
if(TAPDECK_SANITIZE)
  set_tests_properties(apps_tests PROPERTIES ENVIRONMENT
    "ASAN_OPTIONS=fast_unwind_on_malloc=0;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_SOURCE_DIR}/application-leaks.txt")
endif()
