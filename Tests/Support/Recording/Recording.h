#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Engine/Value.h"
#include "Platform/Applications.h"
#include "Platform/LoginItems.h"
#include "Platform/Screens.h"
#include "Tests/Support/Recording/MediaAnswers.h"
#include "Tests/Support/Recording/ScreenAnswers.h"

namespace tapdeck::recording {

/// What the recording platform answers about applications.
struct Applications {
  std::vector<platform::RunningApplication> running;
  std::map<std::string, ValueMap> propertyLists;
  std::map<std::string, std::vector<std::string>> folders;
  /// Bundle identifiers by the bundle's path.
  std::map<std::string, std::string> bundles;
  bool iconFails = false;
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
  double doubleClickInterval = 0.5;

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

/// The script in force. Main thread only, as everything here.
Script& script();

/// Puts the script back to its defaults and forgets trace, queued work and observers.
void reset();

/// Adds a line to the trace; for the other recording parts.
void record(const std::string& line);

/// The platform calls since the last time, in order, one line each. Calls that only read are
/// not in it.
std::vector<std::string> takeTrace();

/// Runs what was queued so far on the global queues, or on the main queue, in order.
void runGlobalQueues();
void runMainQueue();

/// Delivers one notification of changed screen parameters.
void notifyScreenParameters();

/// Lets every timer that still runs fire once.
void fireTimers();

/// Makes an event that is posted as `description`; owned by the caller.
CGEventRef makeDescribedEvent(const std::string& description);

/// "(11,20)" with as many digits as a double needs.
std::string describe(CGPoint point);

}  // namespace tapdeck::recording
