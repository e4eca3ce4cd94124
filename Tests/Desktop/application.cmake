find_package(PkgConfig REQUIRED)
pkg_check_modules(APPLICATION_TESTS REQUIRED IMPORTED_TARGET gtkmm-3.0 xcb xcb-randr)

add_executable(application_tests
  ApplicationFrontsTest.cpp ApplicationHostTest.cpp ApplicationPasteboardTest.cpp
  ApplicationProcess.cpp ApplicationScreenTest.cpp Observer.cpp PrivateServer.cpp)
target_link_libraries(application_tests PRIVATE
  tapdeck_runner tapdeck_application tapdeck_engine_protocol PkgConfig::APPLICATION_TESTS GTest::gmock)
add_dependencies(application_tests tapdeck-host tapdeck-call)

add_test(NAME application_tests
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop
          $<TARGET_FILE:application_tests> $<TARGET_FILE:tapdeck-host>
          $<TARGET_FILE:tapdeck-call>)
set_tests_properties(application_tests PROPERTIES LABELS desktop TIMEOUT 180)
if(TAPDECK_SANITIZE)
  # The quick unwinder does not get through system libraries to the names of the list.
  set_tests_properties(application_tests PROPERTIES ENVIRONMENT
    "ASAN_OPTIONS=fast_unwind_on_malloc=0;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_SOURCE_DIR}/application-leaks.txt")
endif()
