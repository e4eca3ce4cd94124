# Text typed into applications: run by ./typing, on a desktop of its own.
pkg_check_modules(BENCH_TYPING REQUIRED IMPORTED_TARGET xcb xcb-xkb glib-2.0)
set(desktop ${CMAKE_SOURCE_DIR}/Tests/Desktop)
add_executable(bench_typing
  TypingBench.cpp ${desktop}/ApplicationProcess.cpp ${desktop}/Observer.cpp ${desktop}/TypingClient.cpp ${desktop}/TypingText.cpp)
target_link_libraries(bench_typing PRIVATE tapdeck_runner_input tapdeck_platform tapdeck_quartz
                                           PkgConfig::BENCH_TYPING)
# the application that is typed into
add_dependencies(bench_typing typing_text_view)
