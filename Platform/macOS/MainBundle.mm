#include "Platform/MainBundle.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::string mainBundleIdentifier() {
  return utf8FromString(NSBundle.mainBundle.bundleIdentifier);
}

}  // namespace tapdeck::platform
