#include "Platform/ProcessInfo.h"

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>

#include "Platform/macOS/Ending.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::optional<std::string> environmentVariable(const std::string& name) {
  NSString* key = stringFromUtf8(name);
  NSString* value = key == nil ? nil : NSProcessInfo.processInfo.environment[key];
  if (value == nil) return std::nullopt;
  return utf8FromString(value);
}

void stopProcess(const std::string& message) {
  std::fprintf(stderr, "❌ %s\n", message.c_str());
  prepareEnding();
  std::abort();
}

}  // namespace tapdeck::platform
