# tapdeck_flutter: the Flutter engine's framework and the plug-ins' frameworks beside it. Its property
# TAPDECK_FRAMEWORKS lists those that go into the application; none where only the SDK has the engine.

set(TAPDECK_FLUTTER_FRAMEWORKS "" CACHE PATH
    "Folder with FlutterMacOS, App and the plug-ins as .framework or .xcframework")

set(frameworks "")
if(TAPDECK_FLUTTER_FRAMEWORKS)
  file(GLOB frameworks CONFIGURE_DEPENDS
       "${TAPDECK_FLUTTER_FRAMEWORKS}/*.framework"
       "${TAPDECK_FLUTTER_FRAMEWORKS}/*.xcframework/macos-*/*.framework")
elseif(NOT IS_DIRECTORY "${CMAKE_OSX_SYSROOT}/System/Library/Frameworks/FlutterMacOS.framework")
  message(FATAL_ERROR "Set TAPDECK_FLUTTER_FRAMEWORKS to the folder with FlutterMacOS, such as "
                      "the one that 'flutter build macos-framework' makes")
endif()

add_library(tapdeck_flutter INTERFACE)
set_target_properties(tapdeck_flutter PROPERTIES TAPDECK_FRAMEWORKS "${frameworks}")
target_link_libraries(tapdeck_flutter INTERFACE "-framework FlutterMacOS")
foreach(framework ${frameworks})
  cmake_path(GET framework PARENT_PATH folder)
  cmake_path(GET framework STEM name)
  target_compile_options(tapdeck_flutter INTERFACE "SHELL:-iframework ${folder}")
  target_link_options(tapdeck_flutter INTERFACE "-F${folder}")
  # the plug-ins are looked up by name at run time, and the engine itself loads App
  if(NOT name MATCHES "^(App|FlutterMacOS)$")
    target_link_options(tapdeck_flutter INTERFACE "LINKER:-needed_framework,${name}")
  endif()
endforeach()

# tapdeck_objective_cxx(TARGET): what every target with .mm files compiles them with.
function(tapdeck_objective_cxx target)
  set_target_properties(${target} PROPERTIES OBJCXX_STANDARD 20 OBJCXX_STANDARD_REQUIRED ON
                                             OBJCXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
endfunction()
