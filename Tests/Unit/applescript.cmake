# The interpreter on a scripted desktop: no bus, no sound.
add_executable(applescript_tests
  AppleScriptLanguageTest.cpp AppleScriptProgramsTest.cpp
  ${CMAKE_SOURCE_DIR}/Runner/Media/PlayerScripts.cpp)
target_link_libraries(applescript_tests PRIVATE tapdeck_applescript GTest::gmock_main)
gtest_discover_tests(applescript_tests)
