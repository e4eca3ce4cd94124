#include "Platform/Clock.h"

#import <Foundation/Foundation.h>
#include <unistd.h>

namespace tapdeck::platform {

double systemUptime() {
  return NSProcessInfo.processInfo.systemUptime;
}

void sleepMicroseconds(uint32_t microseconds) {
  usleep(microseconds);
}

}  // namespace tapdeck::platform
