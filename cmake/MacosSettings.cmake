# What is left to who builds the Mac application, in one place. Every one has a default that works
# for trying the application on the Mac that builds it; docs/MACOS.md says when to set which.

set(TAPDECK_VERSION "" CACHE STRING "Version that the application shows, such as 1.2.3; else the project's")
set(TAPDECK_BUILD_NUMBER "" CACHE STRING "Number that grows with every build given away; else the version")
if(NOT TAPDECK_VERSION)
  set(TAPDECK_VERSION ${PROJECT_VERSION})
endif()
if(NOT TAPDECK_BUILD_NUMBER)
  set(TAPDECK_BUILD_NUMBER ${TAPDECK_VERSION})
endif()
# The login item's helper of versions before macOS 13 is named after it, so it has no setting.
set(TAPDECK_BUNDLE_IDENTIFIER "com.tapdeck.host" CACHE STRING "The application's bundle identifier")
set(TAPDECK_SIGNING_IDENTITY "-" CACHE STRING
    "Certificate to sign with, which names the team too; \"-\" signs for this Mac only")
set(TAPDECK_PROVISIONING_PROFILE "" CACHE FILEPATH
    "Profile that allows the entitlements to this identity, where it asks for one")
set(TAPDECK_ENTITLEMENTS "${CMAKE_SOURCE_DIR}/Runner/Resources/Tapdeck.entitlements" CACHE FILEPATH
    "What the application asks the system to be allowed")
set(TAPDECK_EXTRA_RESOURCES "" CACHE STRING
    "Files that the plug-ins want in the application's resources, such as GoogleService-Info.plist")
set(TAPDECK_PLUGIN_LIBRARIES "" CACHE STRING
    "Of the system's, what plug-ins in archives link: a framework's name (Security), a path (/usr/lib/swift/*)")
set(TAPDECK_FLUTTER_DIR "" CACHE PATH
    "Folder of a Flutter build: FlutterMacOS, App and the plug-ins as .framework or .xcframework")
