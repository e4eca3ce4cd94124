#include "Platform/Screens.h"

#import <AppKit/AppKit.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

std::optional<uint32_t> numberOf(NSScreen* screen) {
  NSNumber* number = screen.deviceDescription[@"NSScreenNumber"];
  return number == nil ? std::nullopt : std::optional<uint32_t>(number.unsignedIntValue);
}

Screen describe(NSScreen* screen) {
  return {.number = numberOf(screen),
          .frame = screen.frame,
          .backingScaleFactor = screen.backingScaleFactor};
}

NSScreen* attachedScreen(const Screen& screen) {
  for (NSScreen* attached in NSScreen.screens) {
    if (numberOf(attached) == screen.number) return attached;
  }
  return nil;
}

}  // namespace

std::vector<Screen> screens() {
  std::vector<Screen> all;
  for (NSScreen* screen in NSScreen.screens) all.push_back(describe(screen));
  return all;
}

std::optional<Screen> mainScreen() {
  NSScreen* screen = NSScreen.mainScreen;
  if (screen == nil) return std::nullopt;
  return describe(screen);
}

std::string localizedName(const Screen& screen) {
  return utf8FromString(attachedScreen(screen).localizedName);
}

CGRect visibleFrame(const Screen& screen) {
  NSScreen* attached = attachedScreen(screen);
  return attached != nil ? attached.visibleFrame : screen.frame;
}

void observeScreenParameters(std::function<void()> changed) {
  // the notification centre keeps the observer; it is never taken away
  [NSNotificationCenter.defaultCenter
      addObserverForName:NSApplicationDidChangeScreenParametersNotification
                  object:nil
                   queue:NSOperationQueue.mainQueue
              usingBlock:^(NSNotification*) {
                changed();
              }];
}

}  // namespace tapdeck::platform
