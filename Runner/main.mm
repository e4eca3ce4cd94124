#import <AppKit/AppKit.h>

#include "Platform/macOS/Ending.h"
#include "Runner/Input/HeldInput.h"

int main(int argc, const char* argv[]) {
  @autoreleasepool {
    tapdeck::platform::beforeEnding(tapdeck::letGoOfInput);
  }
  return NSApplicationMain(argc, argv);
}
