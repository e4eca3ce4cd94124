#include "Platform/Files.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Data.h"
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

std::string temporaryDirectory() {
  return utf8FromString(NSFileManager.defaultManager.temporaryDirectory.path);
}

std::optional<std::vector<uint8_t>> contentsAtPath(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place == nil) return std::nullopt;
  return bytesFromData([NSFileManager.defaultManager contentsAtPath:place]);
}

void removeItem(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place != nil) [NSFileManager.defaultManager removeItemAtPath:place error:nil];
}

}  // namespace tapdeck::platform
