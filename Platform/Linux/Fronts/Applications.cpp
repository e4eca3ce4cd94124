#include "Platform/Applications.h"

#include <algorithm>
#include <ranges>

#include "Platform/Linux/Applications/ApplicationWindows.h"
#include "Platform/Linux/Applications/BundleFolders.h"
#include "Platform/Linux/Applications/DesktopEntries.h"
#include "Platform/Linux/Applications/IconImage.h"
#include "Platform/Linux/Applications/Launch.h"
#include "Platform/Linux/Media/Players.h"

namespace tapdeck::platform {
namespace {

using namespace applications;

RunningApplication describe(const DesktopEntry& entry, int32_t processId) {
  return {.activationPolicy = ActivationPolicy::accessory,
          .bundleIdentifier = entry.id,
          .localizedName = entry.name,
          .processIdentifier = processId};
}

/// The topmost window that the application offers its user.
std::optional<ApplicationWindow> frontWindow(const DesktopEntry& entry,
                                             const DesktopEntries& entries) {
  const auto windows = applicationWindows();
  const auto found = std::find_if(windows.rbegin(), windows.rend(), [&](const auto& window) {
    return window.isOrdinary && entryOf(window, entries) == &entry;
  });
  return found != windows.rend() ? std::optional(*found) : std::nullopt;
}

}  // namespace

std::vector<RunningApplication> runningApplications() {
  const DesktopEntries& entries = DesktopEntries::current();
  std::vector<RunningApplication> all;
  for (const ApplicationWindow& window : applicationWindows()) {
    const auto* entry = entryOf(window, entries);
    if (entry == nullptr) continue;
    auto application = std::ranges::find(all, entry->id, &RunningApplication::bundleIdentifier);
    if (application == all.end()) {
      application = all.insert(all.end(), describe(*entry, window.processId));
    }
    if (window.isOrdinary) application->activationPolicy = ActivationPolicy::regular;
  }
  return all;
}

std::vector<std::string> runningApplicationNames() {
  // windows and desktop entries are the main thread's, so it is only those that scripts know
  return media::runningPlayers();
}

std::optional<RunningApplication> frontmostApplication() {
  const auto window = activeApplicationWindow();
  if (!window) return std::nullopt;
  const auto* entry = entryOf(*window, DesktopEntries::current());
  RunningApplication application;
  // a window without a desktop entry is in front all the same
  if (entry != nullptr) application = describe(*entry, window->processId);
  application.activationPolicy = ActivationPolicy::regular;
  application.processIdentifier = window->processId;
  return application;
}

std::shared_ptr<const Image> iconOf(const RunningApplication& application) {
  const auto* entry = DesktopEntries::current().withId(application.bundleIdentifier.value_or(""));
  return entry != nullptr ? iconOf(*entry) : nullptr;
}

std::optional<std::string> bundleIdentifierAt(const std::string& path) {
  return bundleIdentifier(path);
}

std::optional<std::string> pathForApplication(const std::string& bundleIdentifier) {
  const auto* entry = DesktopEntries::current().withId(bundleIdentifier);
  return entry != nullptr ? std::optional(entry->path) : std::nullopt;
}

void openApplication(const std::string& path) {
  const DesktopEntries& entries = DesktopEntries::current();
  const auto* entry = entries.atPath(path);
  if (entry == nullptr) return;
  if (const auto window = frontWindow(*entry, entries)) {
    activate(*window);
  } else {
    launch(*entry);
  }
}

}  // namespace tapdeck::platform
