// The fronts of the Objective-C frameworks, recorded.

#include <cstdio>
#include <cstdlib>

#include "Platform/Activity.h"
#include "Platform/Clock.h"
#include "Platform/Events.h"
#include "Platform/Pasteboard.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Queues.h"
#include "Platform/Screens.h"
#include "Platform/Workspace.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {

using recording::queued;
using recording::record;
using recording::script;

std::vector<Screen> screens() {
  return script().screens;
}

std::optional<Screen> mainScreen() {
  return script().mainScreen;
}

std::string localizedName(const Screen& screen) {
  return "Display " + std::to_string(screen.number.value_or(0));
}

CGRect visibleFrame(const Screen& screen) {
  const auto frame = recording::at(script().windows.visibleFrames, screen.number.value_or(0));
  return frame.value_or(screen.frame);
}

void observeScreenParameters(std::function<void()> changed) {
  record("observe screen parameters");
  queued().screenObservers.push_back(std::move(changed));
}

CGPoint mouseLocation() {
  return script().mouseLocation;
}

double doubleClickInterval() {
  return 0.5;
}

CGEventRef createSystemDefinedEvent(uint32_t modifierFlags, int16_t subtype, int64_t data1,
                                    int64_t data2) {
  if (script().systemDefinedFails) return nullptr;
  char text[96];
  std::snprintf(text, sizeof text, "system-defined flags 0x%x subtype %d data1 0x%llx data2 %lld",
                modifierFlags, subtype, static_cast<unsigned long long>(data1),
                static_cast<long long>(data2));
  return recording::makeDescribedEvent(text);
}

struct Activity::Token {};

Activity::Activity(const std::string&) {
  record("activity begins");
}

Activity::~Activity() {
  record("activity ends");
}

double systemUptime() {
  return script().uptime;
}

void sleepMicroseconds(uint32_t microseconds) {
  record("sleep " + std::to_string(microseconds));
  script().uptime += microseconds / 1e6;
}

std::optional<std::string> environmentVariable(const std::string& name) {
  return recording::at(script().environment, name);
}

void stopProcess(const std::string& message) {
  if (script().onStop) script().onStop();
  std::fprintf(stderr, "❌ %s\n", message.c_str());
  std::abort();
}

std::optional<std::string> pasteboardString() {
  return script().pasteboard;
}

void clearPasteboard() {
  record("clear pasteboard");
  script().pasteboard.reset();
}

void setPasteboardString(const std::string& text) {
  record("set pasteboard string '" + text + "'");
  script().pasteboard = text;
}

std::optional<URL> urlWithString(const std::string& text) {
  return script().urlsParse ? std::optional(URL{text}) : std::nullopt;
}

std::optional<std::string> schemeOf(const URL& url) {
  const size_t colon = url.text.find(':');
  return colon != std::string::npos ? std::optional(url.text.substr(0, colon)) : std::nullopt;
}

void openURL(const URL& url) {
  record("open " + url.text);
}

void asyncOnMain(std::function<void()> work) {
  record("async on main");
  queued().main.push_back(std::move(work));
}

void asyncOnGlobal(QualityOfService quality, std::function<void()> work) {
  record(quality == QualityOfService::utility ? "async on utility" : "async on userInitiated");
  queued().global.push_back(std::move(work));
}

}  // namespace tapdeck::platform
