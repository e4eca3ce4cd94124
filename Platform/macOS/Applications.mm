#include "Platform/Applications.h"

#import <AppKit/AppKit.h>

#include <utility>

#import "Platform/macOS/AppKitImages.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

ActivationPolicy policyOf(NSRunningApplication* application) {
  switch (application.activationPolicy) {
    case NSApplicationActivationPolicyRegular:
      return ActivationPolicy::regular;
    case NSApplicationActivationPolicyAccessory:
      return ActivationPolicy::accessory;
    case NSApplicationActivationPolicyProhibited:
      return ActivationPolicy::prohibited;
  }
  return ActivationPolicy::prohibited;  // a policy of some later system
}

std::optional<std::string> textOf(NSString* string) {
  if (string == nil) return std::nullopt;
  return utf8FromString(string);
}

RunningApplication describe(NSRunningApplication* application) {
  return {.activationPolicy = policyOf(application),
          .bundleIdentifier = textOf(application.bundleIdentifier),
          .localizedName = textOf(application.localizedName),
          .processIdentifier = application.processIdentifier};
}

}  // namespace

std::vector<RunningApplication> runningApplications() {
  std::vector<RunningApplication> all;
  for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
    all.push_back(describe(application));
  }
  return all;
}

std::vector<std::string> runningApplicationNames() {
  std::vector<std::string> names;
  for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
    if (auto name = textOf(application.localizedName)) names.push_back(std::move(*name));
  }
  return names;
}

std::optional<RunningApplication> frontmostApplication() {
  NSRunningApplication* application = NSWorkspace.sharedWorkspace.frontmostApplication;
  if (application == nil) return std::nullopt;
  return describe(application);
}

std::shared_ptr<const Image> iconOf(const RunningApplication& application) {
  return imageOf(
      [NSRunningApplication runningApplicationWithProcessIdentifier:application.processIdentifier]
          .icon);
}

std::optional<std::string> bundleIdentifierAt(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place == nil) return std::nullopt;
  return textOf([[NSBundle alloc] initWithPath:place].bundleIdentifier);
}

std::optional<std::string> pathForApplication(const std::string& bundleIdentifier) {
  NSString* identifier = stringFromUtf8(bundleIdentifier);
  if (identifier == nil) return std::nullopt;
  return textOf(
      [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier].path);
}

void openApplication(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place == nil) return;
  [NSWorkspace.sharedWorkspace openApplicationAtURL:[NSURL fileURLWithPath:place]
                                      configuration:[[NSWorkspaceOpenConfiguration alloc] init]
                                  completionHandler:nil];
}

}  // namespace tapdeck::platform
