#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Images.h"

namespace tapdeck::platform {

// NSWorkspace, NSRunningApplication and NSBundle. Texts are UTF-8, paths absolute. Main thread
// only, but for runningApplicationNames.

/// NSApplicationActivationPolicy: whether an application is an ordinary one, with a place in the
/// Dock, one that only shows windows now and then, or one without a face.
enum class ActivationPolicy { regular, accessory, prohibited };

/// One running application as NSRunningApplication describes it.
struct RunningApplication {
  ActivationPolicy activationPolicy = ActivationPolicy::prohibited;
  /// Absent for a program that belongs to no application.
  std::optional<std::string> bundleIdentifier;
  /// By which the user knows it.
  std::optional<std::string> localizedName;
  int32_t processIdentifier = -1;
};

/// NSWorkspace runningApplications, read afresh.
std::vector<RunningApplication> runningApplications();

/// The localizedName of each of NSWorkspace runningApplications that has one, read afresh. Any
/// thread. Every platform tells the media players; others may be missing.
std::vector<std::string> runningApplicationNames();

/// NSWorkspace frontmostApplication: the one that has the keyboard; absent when none has it.
std::optional<RunningApplication> frontmostApplication();

/// NSRunningApplication icon; null when the application has none or has ended.
std::shared_ptr<const Image> iconOf(const RunningApplication& application);

/// NSBundle bundleIdentifier of the bundle at this path; absent when there is no bundle or it has
/// none.
std::optional<std::string> bundleIdentifierAt(const std::string& path);

/// NSWorkspace URLForApplicationWithBundleIdentifier: the path of the application; absent when none
/// bears the identifier.
std::optional<std::string> pathForApplication(const std::string& bundleIdentifier);

/// NSWorkspace openApplicationAtURL with a fresh configuration: starts the application, or brings
/// it to the front when it runs. Returns at once; the outcome is not reported.
void openApplication(const std::string& path);

}  // namespace tapdeck::platform
