#include "Platform/UserDefaults.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

bool userDefaultsBool(const std::string& key) {
  return [NSUserDefaults.standardUserDefaults boolForKey:nameFromUtf8(key)];
}

void setUserDefaultsBool(const std::string& key, bool value) {
  [NSUserDefaults.standardUserDefaults setBool:value forKey:nameFromUtf8(key)];
}

}  // namespace tapdeck::platform
