# tapdeck_flutter: the Flutter engine's framework and the plug-ins' frameworks beside it. Its property
# TAPDECK_FRAMEWORKS lists those that go into the application; none where only the SDK has the engine.

set(frameworks "")
if(TAPDECK_FLUTTER_DIR)
  file(GLOB frameworks CONFIGURE_DEPENDS
       "${TAPDECK_FLUTTER_DIR}/*.framework"
       "${TAPDECK_FLUTTER_DIR}/*.xcframework/macos-*/*.framework")
  foreach(needed FlutterMacOS App)
    if(NOT frameworks MATCHES "/${needed}\\.framework(;|$)")
      message(FATAL_ERROR "TAPDECK_FLUTTER_DIR=${TAPDECK_FLUTTER_DIR} holds no ${needed}.framework or "
                          "${needed}.xcframework; 'flutter build macos-framework' makes such a folder")
    endif()
  endforeach()
elseif(IS_DIRECTORY "${CMAKE_OSX_SYSROOT}/System/Library/Frameworks/FlutterMacOS.framework")
  message(STATUS "TAPDECK_FLUTTER_DIR is not set: Tapdeck.app is built against Flutter's declared "
                 "interface, for checking only, and does not start")
else()
  message(FATAL_ERROR "Set TAPDECK_FLUTTER_DIR to the folder that 'flutter build macos-framework' makes, "
                      "with FlutterMacOS, App and the plug-ins")
endif()

# tapdeck_is_static(FRAMEWORK RESULT): some plug-ins come as archives, which are linked, not embedded.
function(tapdeck_is_static framework result)
  cmake_path(GET framework STEM name)
  execute_process(COMMAND file --brief --dereference ${framework}/${name}
                  OUTPUT_VARIABLE kind COMMAND_ERROR_IS_FATAL ANY)
  set(${result} OFF PARENT_SCOPE)
  if(kind MATCHES "ar archive")
    set(${result} ON PARENT_SCOPE)
  endif()
endfunction()

# Archives of Swift code tell which of Swift's libraries they need, not where these lie.
if(CMAKE_HOST_APPLE AND NOT DEFINED TAPDECK_SWIFT_LIBRARY_DIRS)
  execute_process(COMMAND xcrun --find swiftc OUTPUT_VARIABLE compiler OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND xcrun --show-sdk-path OUTPUT_VARIABLE sdk OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  cmake_path(APPEND compiler ../../lib/swift/macosx)
  cmake_path(NORMAL_PATH compiler)
  set(TAPDECK_SWIFT_LIBRARY_DIRS "${compiler};${sdk}/usr/lib/swift")
endif()

add_library(tapdeck_flutter INTERFACE)
foreach(folder ${TAPDECK_SWIFT_LIBRARY_DIRS})
  target_link_options(tapdeck_flutter INTERFACE "-L${folder}")
endforeach()
target_link_libraries(tapdeck_flutter INTERFACE "-framework FlutterMacOS")
# nothing refers to the plug-ins' classes, nor to the login item's views: they are looked up by name
target_link_options(tapdeck_flutter INTERFACE "-ObjC")
set(embedded "")
foreach(framework ${frameworks})
  cmake_path(GET framework PARENT_PATH folder)
  cmake_path(GET framework STEM name)
  tapdeck_is_static(${framework} is_static)
  if(NOT is_static)
    list(APPEND embedded ${framework})
  endif()
  target_compile_options(tapdeck_flutter INTERFACE "-iframework${folder}")
  target_link_options(tapdeck_flutter INTERFACE "-F${folder}")
  if(name STREQUAL "App")
    continue() # the engine itself loads it
  elseif(is_static)
    target_link_libraries(tapdeck_flutter INTERFACE "-framework ${name}")
  elseif(NOT name STREQUAL "FlutterMacOS")
    target_link_options(tapdeck_flutter INTERFACE "LINKER:-needed_framework,${name}")
  endif()
endforeach()
set_target_properties(tapdeck_flutter PROPERTIES TAPDECK_FRAMEWORKS "${embedded}")

# tapdeck_objective_cxx(TARGET): what every target with .mm files compiles them with.
function(tapdeck_objective_cxx target)
  set_target_properties(${target} PROPERTIES OBJCXX_STANDARD 20 OBJCXX_STANDARD_REQUIRED ON
                                             OBJCXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:OBJCXX>:
    -fobjc-arc -Wnullable-to-nonnull-conversion -Wnullability-completeness -Wobjc-missing-property-synthesis
    -Wstrict-selector-match -Wundeclared-selector -Wimplicit-retain-self -Warc-repeated-use-of-weak>)
endfunction()
