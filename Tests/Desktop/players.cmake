pkg_check_modules(PLAYERS_TESTS REQUIRED IMPORTED_TARGET gtkmm-3.0 libsoup-3.0)

add_executable(players_tests
  ApplicationProcess.cpp MediaBusPeer.cpp MediaFixture.cpp MediaHostTest.cpp
  MediaInterpreterTest.cpp)
target_link_libraries(players_tests PRIVATE
  tapdeck_runner_media tapdeck_platform tapdeck_call PkgConfig::PLAYERS_TESTS GTest::gmock)
add_dependencies(players_tests tapdeck-host tapdeck-call tapdeck-osascript)

add_test(NAME players_tests
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop
          $<TARGET_FILE:players_tests> $<TARGET_FILE:tapdeck-host> $<TARGET_FILE:tapdeck-call>
          $<TARGET_FILE:tapdeck-osascript>)
set_tests_properties(players_tests PROPERTIES LABELS desktop TIMEOUT 600)
if(TAPDECK_SANITIZE)
  # the hosts that are started; see application.cmake
  set_tests_properties(players_tests PROPERTIES ENVIRONMENT
    "ASAN_OPTIONS=fast_unwind_on_malloc=0;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_SOURCE_DIR}/application-leaks.txt")
endif()
