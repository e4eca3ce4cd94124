add_executable(login_tests ApplicationProcess.cpp LoginItemsTest.cpp)
target_link_libraries(login_tests PRIVATE tapdeck_platform tapdeck_engine_protocol GTest::gtest)
add_dependencies(login_tests tapdeck-host tapdeck-call)

# the options after the programs are for the login item to repeat
add_test(NAME login_tests
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/../Support/with-desktop
          $<TARGET_FILE:login_tests> $<TARGET_FILE:tapdeck-host> $<TARGET_FILE:tapdeck-call>
          "100% %f %%" "a \"b\" 'c' \\ \\$HOME `d`" "" " --e=\\\\")
set_tests_properties(login_tests PROPERTIES LABELS desktop TIMEOUT 120)
if(TAPDECK_SANITIZE)
  # the hosts that are started; see application.cmake
  set_tests_properties(login_tests PROPERTIES ENVIRONMENT
    "ASAN_OPTIONS=fast_unwind_on_malloc=0;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_SOURCE_DIR}/application-leaks.txt")
endif()
