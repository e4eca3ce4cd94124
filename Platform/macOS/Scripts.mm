#include "Platform/Scripts.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

struct AppleScript {
  NSAppleScript* script;
};

std::string scriptInterpreterPath() {
  return "/usr/bin/osascript";
}

std::shared_ptr<AppleScript> appleScriptWithSource(const std::string& source) {
  NSString* text = stringFromUtf8(source);
  NSAppleScript* script = text == nil ? nil : [[NSAppleScript alloc] initWithSource:text];
  if (script == nil) return nullptr;
  return std::make_shared<AppleScript>(AppleScript{script});
}

std::optional<std::string> executeAppleScript(AppleScript& script) {
  NSDictionary<NSString*, id>* error = nil;
  [script.script executeAndReturnError:&error];
  if (error == nil) return std::nullopt;
  return utf8FromString(error.description);
}

}  // namespace tapdeck::platform
