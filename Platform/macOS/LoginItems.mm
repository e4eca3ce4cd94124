#include "Platform/LoginItems.h"

#import <Foundation/Foundation.h>
#include <ServiceManagement/ServiceManagement.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

constexpr const char* kNoServices = "This system has no login-item services.";

std::optional<std::string> failure(BOOL done, NSError* error) {
  if (done) return std::nullopt;
  return utf8FromString(error.localizedDescription);
}

API_AVAILABLE(macos(13.0))
std::optional<std::string> unregister(SMAppService* service) {
  NSError* error = nil;
  const BOOL done = [service unregisterAndReturnError:&error];
  return failure(done, error);
}

LaunchdJob describe(NSDictionary* job) {
  LaunchdJob described;
  id label = job[@"Label"];
  if ([label isKindOfClass:NSString.class]) described.label = utf8FromString(label);
  id onDemand = job[@"OnDemand"];
  if (onDemand != nil && CFGetTypeID((__bridge CFTypeRef)onDemand) == CFBooleanGetTypeID()) {
    described.onDemand = [onDemand boolValue];
  }
  return described;
}

}  // namespace

bool hasLoginItemServices() {
  if (@available(macOS 13.0, *)) return true;
  return false;
}

LoginItemStatus mainAppServiceStatus() {
  if (@available(macOS 13.0, *)) {
    return static_cast<LoginItemStatus>(SMAppService.mainAppService.status);
  }
  return LoginItemStatus::notFound;
}

std::optional<std::string> registerMainAppService() {
  if (@available(macOS 13.0, *)) {
    NSError* error = nil;
    const BOOL done = [SMAppService.mainAppService registerAndReturnError:&error];
    return failure(done, error);
  }
  return kNoServices;
}

std::optional<std::string> unregisterMainAppService() {
  if (@available(macOS 13.0, *)) return unregister(SMAppService.mainAppService);
  return kNoServices;
}

std::optional<std::string> unregisterLoginItemService(const std::string& identifier) {
  if (@available(macOS 13.0, *)) {
    return unregister([SMAppService loginItemServiceWithIdentifier:nameFromUtf8(identifier)]);
  }
  return kNoServices;
}

// Both calls of the older mechanism are deprecated, and nothing has come in their place: they alone
// speak of a helper that an older version of the application has enabled.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

bool setLoginItemEnabled(const std::string& identifier, bool enabled) {
  return SMLoginItemSetEnabled((__bridge CFStringRef)nameFromUtf8(identifier), enabled);
}

std::optional<std::vector<LaunchdJob>> userLaunchdJobs() {
  NSArray* jobs = CFBridgingRelease(SMCopyAllJobDictionaries(kSMDomainUserLaunchd));
  if (![jobs isKindOfClass:NSArray.class]) return std::nullopt;
  std::vector<LaunchdJob> described;
  for (id job in jobs) {
    if (![job isKindOfClass:NSDictionary.class]) return std::nullopt;
    described.push_back(describe(job));
  }
  return described;
}

#pragma clang diagnostic pop

}  // namespace tapdeck::platform
