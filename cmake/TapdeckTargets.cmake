# What every target of the project has in common, and the front on which the platforms stand.

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(tapdeck_options INTERFACE)
target_include_directories(tapdeck_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tapdeck_options INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 sees overlaps in "text" + std::string that are none (GCC bug 105651)
  target_compile_options(tapdeck_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT APPLE)
  # clang takes libstdc++ 12's own use of what it deprecates for ours
  target_compile_options(tapdeck_options INTERFACE -Wno-deprecated-declarations)
endif()
if(APPLE)
  target_compile_options(tapdeck_options INTERFACE -Wunguarded-availability
                                                   -Wdeprecated-declarations)
endif()
if(TAPDECK_WERROR)
  target_compile_options(tapdeck_options INTERFACE -Werror)
endif()
if(TAPDECK_SANITIZE)
  target_compile_options(tapdeck_options INTERFACE -fsanitize=${TAPDECK_SANITIZE}
                                                   -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=all)
  target_link_options(tapdeck_options INTERFACE -fsanitize=${TAPDECK_SANITIZE})
endif()

# tapdeck_library(NAME SOURCES... LINKS...): one folder of code, one target.
function(tapdeck_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tapdeck_options ${ARG_LINKS})
endfunction()
