# The screen captured: run by ./capture, on displays of its own.
pkg_check_modules(BENCH_CAPTURE REQUIRED IMPORTED_TARGET xcb xcb-shm)
add_executable(bench_capture CaptureBench.cpp CaptureScene.cpp OtherPrograms.cpp)
# the host stands before the platform, as in the application
target_link_libraries(bench_capture PRIVATE bench_measuring tapdeck_runner tapdeck_application
                                            PkgConfig::BENCH_CAPTURE)
