# The engine that stands in on Linux, on loopback: no desktop.
add_executable(standin_tests
  StandInChannelTest.cpp StandInDevicesTest.cpp StandInFixture.cpp StandInHoldsTest.cpp StandInHttpTest.cpp
  StandInLimitsTest.cpp StandInPicturesTest.cpp StandInSharingTest.cpp)
target_link_libraries(standin_tests PRIVATE tapdeck_standin GTest::gmock_main)
gtest_discover_tests(standin_tests)
