# What makes an executable target a macOS application: its main interface file, its icon, the
# frameworks that it carries, its signature, and the archive that is given away.

# Apple's own; elsewhere other programs bear these names
if(CMAKE_HOST_APPLE)
  find_program(TAPDECK_IBTOOL ibtool)
  find_program(TAPDECK_CODESIGN codesign)
  find_program(TAPDECK_DITTO ditto)
endif()
find_program(TAPDECK_RSVG_CONVERT rsvg-convert)

# tapdeck_bundle_resource(TARGET FILE): puts a file into the application's resources. A changed one
# asks for a new signature, which follows linking.
function(tapdeck_bundle_resource target file)
  set_source_files_properties(${file} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE ${file})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${file})
endfunction()

# tapdeck_interface_file(TARGET XIB): compiles the interface file into the application. The target's
# property TAPDECK_INTERFACE is the name that it has there.
function(tapdeck_interface_file target xib)
  cmake_path(GET xib STEM name)
  set(interface ${CMAKE_CURRENT_SOURCE_DIR}/${xib})
  if(TAPDECK_IBTOOL)
    set(source ${interface})
    set(interface ${CMAKE_CURRENT_BINARY_DIR}/${name}.nib)
    add_custom_command(
      OUTPUT ${interface}
      # for a system that it is not told, it writes a folder for all of them in the place of the file
      COMMAND ${TAPDECK_IBTOOL} --errors --warnings --notices --output-format human-readable-text
              --target-device mac --minimum-deployment-target ${CMAKE_OSX_DEPLOYMENT_TARGET}
              --compile ${interface} ${source}
      DEPENDS ${source}
      COMMENT "Compiling ${xib}"
      VERBATIM)
  else()
    message(STATUS "No ibtool here (it comes with Xcode): ${target}.app is for checking only and does not start")
  endif()
  tapdeck_bundle_resource(${target} ${interface})
  cmake_path(GET interface FILENAME file)
  set_target_properties(${target} PROPERTIES TAPDECK_INTERFACE ${file})
endfunction()

# tapdeck_icon(TARGET SVG): draws the application's icon.
function(tapdeck_icon target drawing)
  if(NOT TAPDECK_RSVG_CONVERT)
    message(FATAL_ERROR "The icon needs rsvg-convert (brew install librsvg; Debian: librsvg2-bin)")
  endif()
  cmake_path(GET drawing STEM name)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/${drawing})
  set(icon ${CMAKE_CURRENT_BINARY_DIR}/${name}.icns)
  add_custom_command(
    OUTPUT ${icon}
    COMMAND ${CMAKE_SOURCE_DIR}/cmake/make-icns ${source} ${icon}
    DEPENDS ${source} ${CMAKE_SOURCE_DIR}/cmake/make-icns
    COMMENT "Drawing ${name}.icns"
    VERBATIM)
  tapdeck_bundle_resource(${target} ${icon})
endfunction()

# tapdeck_sign(TARGET BUNDLE [CODESIGN_OPTIONS...]): signs the bundle after the target is built.
# What is inside a bundle must be signed before it.
function(tapdeck_sign target bundle)
  if(NOT TAPDECK_CODESIGN)
    return()
  endif()
  set(options --force --sign ${TAPDECK_SIGNING_IDENTITY})
  if(NOT TAPDECK_SIGNING_IDENTITY STREQUAL "-")
    list(APPEND options --timestamp --options runtime) # what Apple's notary asks for
  endif()
  add_custom_command(TARGET ${target} POST_BUILD
                     COMMAND ${TAPDECK_CODESIGN} ${options} ${ARGN} ${bundle}
                     VERBATIM)
endfunction()

# tapdeck_embed_frameworks(TARGET FRAMEWORKS...): copies the frameworks to where the application
# looks for them, signed like itself.
function(tapdeck_embed_frameworks target)
  set(folder $<TARGET_BUNDLE_CONTENT_DIR:${target}>/Frameworks)
  add_custom_command(TARGET ${target} POST_BUILD
                     COMMAND ${CMAKE_COMMAND} -E rm -rf ${folder}
                     COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
                     VERBATIM)
  foreach(framework ${ARGN})
    cmake_path(GET framework FILENAME file)
    cmake_path(GET framework STEM name)
    # cp keeps the links inside a framework
    add_custom_command(TARGET ${target} POST_BUILD
                       COMMAND cp -R ${framework} ${folder}/
                       VERBATIM)
    tapdeck_sign(${target} ${folder}/${file})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${framework}/${name})
  endforeach()
  target_link_options(${target} PRIVATE "LINKER:-rpath,@executable_path/../Frameworks")
endfunction()

# tapdeck_entitlements_to_sign(RESULT): the file of entitlements that the application is signed with.
# The system ends an application as it starts that is signed for this Mac only and claims what Apple
# grants by profile, so such a signature gets a copy without that.
function(tapdeck_entitlements_to_sign result)
  if(NOT TAPDECK_SIGNING_IDENTITY STREQUAL "-")
    set(${result} ${TAPDECK_ENTITLEMENTS} PARENT_SCOPE)
    return()
  endif()
  set(script ${CMAKE_SOURCE_DIR}/cmake/unrestricted-entitlements)
  set(copy ${CMAKE_CURRENT_BINARY_DIR}/unrestricted.entitlements)
  execute_process(COMMAND ${script} ${TAPDECK_ENTITLEMENTS} ${copy}
                  OUTPUT_VARIABLE left_out OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${TAPDECK_ENTITLEMENTS} ${script})
  if(left_out)
    message(STATUS "TAPDECK_SIGNING_IDENTITY is \"-\": the signature is for this Mac only and goes without "
                   "these entitlements, which need a certificate and a profile: ${left_out}")
  endif()
  set(${result} ${copy} PARENT_SCOPE)
endfunction()

# tapdeck_seal(TARGET ENTITLEMENTS): signs the whole application, as the last step of building it.
function(tapdeck_seal target entitlements)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${entitlements})
  if(TAPDECK_PROVISIONING_PROFILE)
    add_custom_command(TARGET ${target} POST_BUILD
                       COMMAND ${CMAKE_COMMAND} -E copy ${TAPDECK_PROVISIONING_PROFILE}
                               $<TARGET_BUNDLE_CONTENT_DIR:${target}>/embedded.provisionprofile
                       VERBATIM)
  endif()
  tapdeck_sign(${target} $<TARGET_BUNDLE_DIR:${target}> --entitlements ${entitlements})
endfunction()

# tapdeck_archive(TARGET ENTITLEMENTS FRAMEWORKS...): the target tapdeck_package, which checks the
# application with its signature and the frameworks that it carries, and packs it into one file.
function(tapdeck_archive target entitlements)
  set(archive ${CMAKE_BINARY_DIR}/${target}-${TAPDECK_VERSION}.zip)
  list(TRANSFORM ARGN REPLACE "^.*/([^/]+)\\.framework$" "--embedded=\\1" OUTPUT_VARIABLE embedded)
  list(TRANSFORM TAPDECK_PLUGIN_LIBRARIES PREPEND "--also-linked=" OUTPUT_VARIABLE linked)
  set(signature "")
  if(TAPDECK_CODESIGN)
    set(signature --codesign ${TAPDECK_CODESIGN} --entitlements ${entitlements})
  endif()
  if(TAPDECK_DITTO)
    set(pack ${TAPDECK_DITTO} -c -k --keepParent ${target}.app ${archive})
  else()
    set(pack ${CMAKE_COMMAND} -E tar cf ${archive} --format=zip ${target}.app)
  endif()
  add_custom_target(tapdeck_package
                    COMMAND ${CMAKE_SOURCE_DIR}/cmake/check-bundle $<TARGET_BUNDLE_DIR:${target}>
                            --sdk "${CMAKE_OSX_SYSROOT}" --minimum-system ${CMAKE_OSX_DEPLOYMENT_TARGET}
                            --interface $<TARGET_PROPERTY:${target},TAPDECK_INTERFACE>
                            ${embedded} ${linked} ${signature}
                    COMMAND ${CMAKE_COMMAND} -E rm -f ${archive}
                    COMMAND ${pack}
                    WORKING_DIRECTORY $<TARGET_BUNDLE_DIR:${target}>/..
                    COMMENT "Packing ${archive}"
                    VERBATIM)
  add_dependencies(tapdeck_package ${target})
endfunction()
