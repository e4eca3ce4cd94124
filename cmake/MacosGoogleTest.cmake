# GoogleTest where it is installed (Homebrew), else built from its sources.

find_package(GTest QUIET)
if(NOT GTest_FOUND)
  set(TAPDECK_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
  if(NOT EXISTS ${TAPDECK_GOOGLETEST_SOURCE}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest is neither installed nor in TAPDECK_GOOGLETEST_SOURCE "
                        "(brew install googletest; Debian: apt-get install googletest)")
  endif()
  add_subdirectory(${TAPDECK_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
