# What makes an executable target a macOS application: its main interface file, the frameworks that
# it carries, its signature.

set(TAPDECK_BUNDLE_IDENTIFIER "com.tapdeck.host" CACHE STRING "The application's bundle identifier")
set(TAPDECK_SIGNING_IDENTITY "-" CACHE STRING "Identity to sign with; \"-\" signs for this Mac only")
find_program(TAPDECK_IBTOOL ibtool)
find_program(TAPDECK_CODESIGN codesign)

# tapdeck_interface_file(TARGET XIB): compiles the interface file into the application.
function(tapdeck_interface_file target xib)
  cmake_path(GET xib STEM name)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/${xib})
  if(TAPDECK_IBTOOL)
    set(interface ${CMAKE_CURRENT_BINARY_DIR}/${name}.nib)
    add_custom_command(
      OUTPUT ${interface}
      COMMAND ${TAPDECK_IBTOOL} --errors --warnings --notices --output-format human-readable-text
              --compile ${interface} ${source}
      DEPENDS ${source}
      COMMENT "Compiling ${xib}"
      VERBATIM)
  else()
    set(interface ${source})
    add_custom_command(
      TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E echo
              "No ibtool here: ${target}.app holds ${name}.xib uncompiled. It is for checking only and does not start."
      VERBATIM)
  endif()
  set_source_files_properties(${interface} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE ${interface})
  # a changed interface file asks for a new signature
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${interface})
endfunction()

# tapdeck_embed_frameworks(TARGET FRAMEWORKS...): copies the frameworks to where the application
# looks for them, signed like itself.
function(tapdeck_embed_frameworks target)
  set(folder $<TARGET_BUNDLE_CONTENT_DIR:${target}>/Frameworks)
  foreach(framework ${ARGN})
    cmake_path(GET framework FILENAME name)
    add_custom_command(TARGET ${target} POST_BUILD
                       COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
                       COMMAND ${CMAKE_COMMAND} -E rm -rf ${folder}/${name}
                       COMMAND cp -R ${framework} ${folder}/
                       VERBATIM)
    tapdeck_sign(${target} ${folder}/${name})
  endforeach()
  target_link_options(${target} PRIVATE "LINKER:-rpath,@executable_path/../Frameworks")
endfunction()

# tapdeck_sign(TARGET BUNDLE [CODESIGN_OPTIONS...]): signs the bundle after the target is built.
function(tapdeck_sign target bundle)
  if(TAPDECK_CODESIGN)
    add_custom_command(TARGET ${target} POST_BUILD
                       COMMAND ${TAPDECK_CODESIGN} --force --sign ${TAPDECK_SIGNING_IDENTITY}
                               ${ARGN} ${bundle}
                       VERBATIM)
  endif()
endfunction()
