# One function for each kind of test.

# tapdeck_unit_test(NAME SOURCES... LINKS...): no desktop; each case is a test of CTest's, labelled
# with the program's name.
function(tapdeck_unit_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} tapdeck_test_support GTest::gmock_main)
  gtest_discover_tests(${name} PROPERTIES LABELS ${name})
endfunction()

# tapdeck_desktop_program(NAME SOURCES... LINKS...): a program of desktop tests, not yet run. The
# platform comes with what they share, behind the host, where the linker looks for it.
function(tapdeck_desktop_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} tapdeck_desktop_support GTest::gmock)
endfunction()

# tapdeck_desktop_run(NAME SECONDS COMMAND...): runs it on a desktop of its own, ended after so long.
function(tapdeck_desktop_run name seconds)
  add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/Tests/Support/with-desktop ${ARGN})
  set_tests_properties(${name} PROPERTIES LABELS "desktop;${name}" TIMEOUT ${seconds})
  if(TAPDECK_SANITIZE)
    # The quick unwinder does not get through system libraries to the names of the list.
    set_tests_properties(${name} PROPERTIES ENVIRONMENT
      "ASAN_OPTIONS=fast_unwind_on_malloc=0;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_SOURCE_DIR}/Tests/Desktop/application-leaks.txt")
  endif()
endfunction()
