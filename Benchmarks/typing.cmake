# Text typed into applications: run by ./typing, on a desktop of its own.
pkg_check_modules(BENCH_TYPING REQUIRED IMPORTED_TARGET xcb xcb-xkb glib-2.0)
add_executable(bench_typing TypingBench.cpp)
target_link_libraries(bench_typing PRIVATE bench_measuring tapdeck_desktop_support
                                           PkgConfig::BENCH_TYPING)
# the application that is typed into
add_dependencies(bench_typing typing_text_view)
