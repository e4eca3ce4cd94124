add_executable(engine_tests ValueTest.cpp ReplyTest.cpp StandardCodecTest.cpp)
target_link_libraries(engine_tests PRIVATE tapdeck_engine GTest::gtest_main)
gtest_discover_tests(engine_tests)

if(NOT APPLE)
  add_executable(call_tests CallJsonTest.cpp SessionFileTest.cpp)
  target_link_libraries(call_tests PRIVATE tapdeck_call GTest::gtest_main)
  gtest_discover_tests(call_tests)
endif()
