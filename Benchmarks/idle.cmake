# The host with nothing to do: run by ./idle, on a desktop of its own.
add_executable(bench_idle IdleBench.cpp)
target_link_libraries(bench_idle PRIVATE bench_measuring tapdeck_desktop_support tapdeck_call)
add_dependencies(bench_idle tapdeck-host)
