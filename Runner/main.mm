#import <AppKit/AppKit.h>

#include "Platform/macOS/Ending.h"
#include "Platform/macOS/HeldInput/HeldInput.h"

int main(int argc, const char* argv[]) {
  @autoreleasepool {
    tapdeck::platform::beforeEnding(tapdeck::platform::letGoOfInput);
  }
  return NSApplicationMain(argc, argv);
}
