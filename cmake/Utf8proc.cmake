# utf8proc::utf8proc: installed (Debian, Homebrew), else built from the sources that
# TAPDECK_UTF8PROC_SOURCE names.

set(TAPDECK_UTF8PROC_SOURCE "" CACHE PATH "utf8proc's sources, where it is not installed")

if(TAPDECK_UTF8PROC_SOURCE)
  add_library(utf8proc_built STATIC ${TAPDECK_UTF8PROC_SOURCE}/utf8proc.c)
  target_include_directories(utf8proc_built SYSTEM PUBLIC ${TAPDECK_UTF8PROC_SOURCE})
  target_compile_definitions(utf8proc_built PUBLIC UTF8PROC_STATIC)
  add_library(utf8proc::utf8proc ALIAS utf8proc_built)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET GLOBAL libutf8proc)
  if(APPLE)
    # the application that is given away must not look for a library of the Mac that built it
    find_library(UTF8PROC_ARCHIVE libutf8proc.a HINTS ${UTF8PROC_LIBRARY_DIRS} REQUIRED)
    add_library(utf8proc::utf8proc STATIC IMPORTED GLOBAL)
    set_target_properties(utf8proc::utf8proc PROPERTIES
      IMPORTED_LOCATION ${UTF8PROC_ARCHIVE}
      INTERFACE_INCLUDE_DIRECTORIES "${UTF8PROC_INCLUDE_DIRS}"
      INTERFACE_COMPILE_DEFINITIONS UTF8PROC_STATIC)
  else()
    add_library(utf8proc::utf8proc ALIAS PkgConfig::UTF8PROC)
  endif()
endif()
