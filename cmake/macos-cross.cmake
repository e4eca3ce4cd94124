# Builds for macOS off a Mac, for checking only: clang and lld against a sysroot laid out from a
# macOS SDK, named by -DMACOS_SYSROOT= or the environment variable of that name.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_ARCHITECTURES arm64)
if(NOT CMAKE_OSX_DEPLOYMENT_TARGET)
  set(CMAKE_OSX_DEPLOYMENT_TARGET 11.0)
endif()

set(MACOS_SYSROOT "$ENV{MACOS_SYSROOT}" CACHE PATH "macOS SDK, laid out as a sysroot")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SYSROOT)
if(NOT IS_DIRECTORY "${MACOS_SYSROOT}/System/Library/Frameworks")
  message(FATAL_ERROR "Set MACOS_SYSROOT to a macOS SDK that is laid out as a sysroot")
endif()
set(CMAKE_OSX_SYSROOT "${MACOS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH "${MACOS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# tapdeck_cross_tool(VARIABLE PROGRAM): names the tool by its full path
macro(tapdeck_cross_tool variable program)
  find_program(TAPDECK_CROSS_${program} ${program} REQUIRED)
  set(${variable} ${TAPDECK_CROSS_${program}})
endmacro()
tapdeck_cross_tool(CMAKE_C_COMPILER clang-19)
tapdeck_cross_tool(CMAKE_CXX_COMPILER clang++-19)
tapdeck_cross_tool(CMAKE_OBJCXX_COMPILER clang++-19)
tapdeck_cross_tool(CMAKE_AR llvm-ar-19)
tapdeck_cross_tool(CMAKE_RANLIB llvm-ranlib-19)
tapdeck_cross_tool(CMAKE_NM llvm-nm-19)
tapdeck_cross_tool(CMAKE_STRIP llvm-strip-19)
tapdeck_cross_tool(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macos${CMAKE_OSX_DEPLOYMENT_TARGET})
endforeach()

# the SDK's C++ library, not the one beside the compiler: it knows what macOS 11 lacks
set(CMAKE_CXX_FLAGS_INIT "-stdlib++-isystem ${MACOS_SYSROOT}/usr/include/c++/v1")
set(CMAKE_OBJCXX_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")
# the SDK's stubs of the C and C++ libraries list no symbols; cmake/check-macos looks at what is left
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-undefined,dynamic_lookup")
set(CMAKE_MODULE_LINKER_FLAGS "${CMAKE_EXE_LINKER_FLAGS_INIT}")

# nothing that is built can run here
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
