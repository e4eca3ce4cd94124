# Sets grapheme_break_test: Unicode's own test data for the version that utf8proc knows. Debian has them
# as a package; elsewhere they are fetched once.
set(TAPDECK_UNICODE_DATA /usr/share/unicode CACHE PATH "Folder of Unicode's data files, for tests")
set(TAPDECK_UNICODE_SITE https://www.unicode.org/Public CACHE STRING "Where Unicode's data files are fetched from")

function(tapdeck_unicode_version result)
  if(TAPDECK_UTF8PROC_SOURCE)
    file(READ ${TAPDECK_UTF8PROC_SOURCE}/utf8proc.c text)
    string(REGEX MATCH "utf8proc_unicode_version\\(void\\)[^\"]*\"([0-9.]+)\"" found "${text}")
    set(version ${CMAKE_MATCH_1})
  else()
    # try_run takes no alias
    get_target_property(library utf8proc::utf8proc ALIASED_TARGET)
    if(NOT library)
      set(library utf8proc::utf8proc)
    endif()
    try_run(ran compiled
            SOURCE_FROM_CONTENT version.c "#include <stdio.h>
#include <utf8proc.h>
int main(void) { return fputs(utf8proc_unicode_version(), stdout) < 0; }"
            LINK_LIBRARIES ${library}
            RUN_OUTPUT_VARIABLE version)
  endif()
  set(${result} "${version}" PARENT_SCOPE)
endfunction()

set(grapheme_break_test ${TAPDECK_UNICODE_DATA}/auxiliary/GraphemeBreakTest.txt)
if(NOT EXISTS ${grapheme_break_test} AND NOT CMAKE_CROSSCOMPILING)
  tapdeck_unicode_version(version)
  set(grapheme_break_test ${CMAKE_BINARY_DIR}/unicode-${version}/GraphemeBreakTest.txt)
  if(NOT EXISTS ${grapheme_break_test})
    file(DOWNLOAD ${TAPDECK_UNICODE_SITE}/${version}/ucd/auxiliary/GraphemeBreakTest.txt
         ${grapheme_break_test}.part STATUS status TLS_VERIFY ON)
    if(status MATCHES "^0;")
      file(RENAME ${grapheme_break_test}.part ${grapheme_break_test})
    else()
      message(WARNING "Unicode's test data could not be fetched (${status}): the test of text clusters will fail")
    endif()
  endif()
endif()
