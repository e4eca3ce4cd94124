#include "Platform/Log.h"

#import <Foundation/Foundation.h>
#include <os/log.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

void logError(const char* subsystem, const char* category, const std::string& message) {
  // the same pair gives the same log each time; a text is private unless it is said to be public
  os_log_error(os_log_create(subsystem, category), "%{public}@", stringFromUtf8(message));
}

void logLine(const std::string& line) {
  NSLog(@"%@", stringFromUtf8(line));
}

}  // namespace tapdeck::platform
