#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Engine/Value.h"
#include "Platform/Applications.h"
#include "Platform/LoginItems.h"
#include "Platform/Screens.h"

namespace tapdeck::recording {

/// What the recording platform answers about applications.
struct Applications {
  std::vector<platform::RunningApplication> running;
  std::map<std::string, ValueMap> propertyLists;
  std::map<std::string, std::vector<std::string>> folders;
  /// Bundle identifiers by the bundle's path.
  std::map<std::string, std::string> bundles;
  bool iconFails = false;
  bool runningIconFails = false;
  /// How often the names of those that run were asked for.
  int timesNamed = 0;
  bool bitmapFails = false;
  /// What every bitmap is encoded as; absent makes it fail.
  std::optional<std::vector<uint8_t>> png = std::vector<uint8_t>{0x89, 'P', 'N', 'G'};
};

/// What the recording platform answers about login items, and what it remembers of them.
struct LoginItems {
  bool hasServices = true;
  platform::LoginItemStatus status = platform::LoginItemStatus::notRegistered;
  /// What each operation fails with; absent lets it succeed and changes the status.
  std::optional<std::string> registrationError;
  std::optional<std::string> unregistrationError;
  std::optional<std::vector<platform::LaunchdJob>> jobs;
  std::string bundleIdentifier = "com.example.app";
  /// A user who has started the application before.
  std::map<std::string, bool> userDefaults = {{"LaunchAtLogin__hasMigrated", true}};
};

/// What the recording platform answers about other applications' windows.
struct OtherWindows {
  std::map<uint32_t, CGRect> visibleFrames;
  std::optional<int32_t> frontmostProcess = 321;
  bool hasFocusedWindow = true;
  /// What "AXFullScreen" reads as; null makes the read fail. Not owned.
  CFTypeRef fullScreen = kCFBooleanFalse;
  bool valueFails = false;
  AXError positionError = kAXErrorSuccess;
};

/// What the recording platform shows on displays, and how it draws and encodes it.
struct ScreenImages {
  struct Picture {
    size_t width;
    size_t height;
    /// What a context holds once the picture is drawn, rows without padding; zero where it ends.
    std::vector<uint8_t> drawn;
  };
  /// A display that is not among them has no image.
  std::map<CGDirectDisplayID, Picture> displays;
  /// Bytes at the end of each row of a context, different after each drawing.
  size_t rowPadding = 0;
  /// What every context's pixels are numbered by.
  std::optional<uint64_t> version;
  /// Name of the function that fails.
  std::string failing;
  /// What every image is encoded as.
  std::vector<uint8_t> jpeg = {0xff, 0xd8, 0xff, 0xd9};
  /// Where the last one stands, in the data object that it was written to. Set by the platform.
  const uint8_t* encoded = nullptr;
};

/// How a child process behaves.
struct Child {
  std::string output = {};
  int32_t status = 0;
  /// From its start to its end, by the script's clock.
  double seconds = 0;
};

/// What the recording platform answers about child processes, scripts, downloads and covers.
struct Media {
  /// The child for a program's text.
  std::function<Child(const std::string& program)> childFor = [](const auto&) { return Child(); };
  /// What starting a child fails with.
  std::optional<std::string> launchError;
  bool appleScriptFails = false;
  /// What every program that runs in the process fails with.
  std::optional<std::string> appleScriptError;

  std::optional<std::vector<uint8_t>> download;
  double downloadSeconds = 0;
  std::map<std::string, std::vector<uint8_t>> files;
  /// The size of every image; absent makes decoding fail.
  std::optional<CGSize> imageSize;
  std::optional<std::vector<uint8_t>> jpeg;
};

/// What the recording platform answers, and what it lets fail. A test sets it before it calls.
struct Script {
  std::vector<platform::Screen> screens;
  std::optional<platform::Screen> mainScreen;
  CGDirectDisplayID mainDisplay = 1;
  /// Quartz bounds by display; empty bounds for any other.
  std::map<CGDirectDisplayID, CGRect> bounds;

  /// As AppKit has it: origin at the bottom left.
  CGPoint mouseLocation = {0, 0};
  /// As a fresh event has it: origin at the top left; absent makes the event fail.
  std::optional<CGPoint> eventLocation = CGPoint{0, 0};
  /// Sleeping moves it on.
  double uptime = 100;

  bool trusted = true;
  /// What the call that prompts answers.
  bool trustedOnPrompt = false;
  bool captureGranted = true;
  bool captureGrantedOnRequest = false;

  bool sourceFails = false;
  /// Creating an event of one of these types fails.
  std::set<CGEventType> failingEvents;
  bool systemDefinedFails = false;

  std::optional<std::string> pasteboard;
  std::map<std::string, std::string> environment;
  bool urlsParse = true;
  /// Throws where the process is to stop, so that it can go on with something else.
  std::function<void()> onStop;

  Applications applications;
  LoginItems loginItems;
  OtherWindows windows;
  ScreenImages images;
  Media media;
};

/// What the recording platform was handed to run later.
struct Queued {
  std::vector<std::function<void()>> global;
  std::vector<std::function<void()>> main;
  std::vector<std::function<void()>> screenObservers;
  /// By their numbers, from 1.
  std::map<int, std::function<void()>> timers;
  int timersMade = 0;
  std::vector<std::function<void()>> downloads;
};

/// What stands under the key, if anything does.
template <typename Key, typename Content>
std::optional<Content> at(const std::map<Key, Content>& all, const Key& key) {
  const auto found = all.find(key);
  return found != all.end() ? std::optional(found->second) : std::nullopt;
}

/// The script in force. Main thread only, as everything here.
inline Script& script() {
  static Script current;
  return current;
}

inline Queued& queued() {
  static Queued current;
  return current;
}

inline std::vector<std::string>& trace() {
  static std::vector<std::string> current;
  return current;
}

/// Events that were handed out before mean nothing any more.
void forgetEvents();

/// Puts the script back to its defaults and forgets trace, queued work and observers.
inline void reset() {
  script() = Script();
  trace().clear();
  queued() = Queued();
  forgetEvents();
}

/// Adds a line to the trace; for the other recording parts.
inline void record(const std::string& line) {
  trace().push_back(line);
}

/// The platform calls since the last time, in order, one line each. Calls that only read are
/// not in it.
inline std::vector<std::string> takeTrace() {
  return std::exchange(trace(), {});
}

/// Runs what was queued so far on the global queues, or on the main queue, in order.
inline void runAll(std::vector<std::function<void()>>& queue) {
  for (auto& work : std::exchange(queue, {})) work();
}
inline void runGlobalQueues() {
  runAll(queued().global);
}
inline void runMainQueue() {
  runAll(queued().main);
}
/// Hands over what is still to come of downloads.
inline void completeDownloads() {
  runAll(queued().downloads);
}

/// Delivers one notification of changed screen parameters.
inline void notifyScreenParameters() {
  for (const auto& observer : queued().screenObservers) observer();
}

/// Lets every timer that still runs fire once.
inline void fireTimers() {
  const auto timers = queued().timers;
  for (const auto& [number, fired] : timers) fired();
}

/// Makes an event that is posted as `description`; owned by the caller.
CGEventRef makeDescribedEvent(const std::string& description);

/// "(11,20)" with as many digits as a double needs.
inline std::string describe(CGPoint point) {
  char text[64];
  std::snprintf(text, sizeof text, "(%.15g,%.15g)", point.x, point.y);
  return text;
}

}  // namespace tapdeck::recording
