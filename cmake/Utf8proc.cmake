# utf8proc::utf8proc, built from the copy in third_party: where text breaks into characters depends
# on the Unicode version, and must not depend on what a machine has installed.
set(UTF8PROC_FOLDER ${CMAKE_SOURCE_DIR}/third_party/utf8proc)

add_library(utf8proc STATIC ${UTF8PROC_FOLDER}/utf8proc.c)
target_include_directories(utf8proc SYSTEM PUBLIC ${UTF8PROC_FOLDER})
target_compile_definitions(utf8proc PUBLIC UTF8PROC_STATIC)
add_library(utf8proc::utf8proc ALIAS utf8proc)
