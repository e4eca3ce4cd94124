# Calls over the socket: run by ./input, on a desktop of its own.
add_executable(bench_input DelayingDisplay.cpp EchoServer.cpp InputBench.cpp)
target_link_libraries(bench_input PRIVATE bench_measuring tapdeck_desktop_support tapdeck_call)
add_dependencies(bench_input tapdeck-host)
