# Children, downloads and pictures on Linux: no desktop. In a folder of its own, where it puts an
# interpreter beside itself; all in one process for the same reason.
find_package(PkgConfig REQUIRED)
pkg_check_modules(MEDIA_TESTS REQUIRED IMPORTED_TARGET libsoup-3.0)
add_executable(media_tests CoversTest.cpp TasksTest.cpp)
set_target_properties(media_tests PROPERTIES
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/media)
target_link_libraries(media_tests PRIVATE
  tapdeck_runner_media tapdeck_platform PkgConfig::MEDIA_TESTS GTest::gmock_main)
add_test(NAME media_tests COMMAND media_tests)
set_tests_properties(media_tests PROPERTIES TIMEOUT 120)
