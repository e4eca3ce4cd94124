# What keys and text become, as far as no X server is needed.
add_executable(keys_plan_tests KeysPlanTest.cpp)
target_link_libraries(keys_plan_tests PRIVATE tapdeck_quartz GTest::gmock_main)
gtest_discover_tests(keys_plan_tests)
