#include "Platform/Files.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::string homeDirectory() {
  return utf8FromString(NSHomeDirectory());
}

std::vector<std::string> contentsOfDirectory(const std::string& path) {
  std::vector<std::string> names;
  NSString* place = stringFromUtf8(path);
  if (place == nil) return names;
  for (NSString* name in [NSFileManager.defaultManager contentsOfDirectoryAtPath:place error:nil]) {
    names.push_back(utf8FromString(name));
  }
  return names;
}

}  // namespace tapdeck::platform
