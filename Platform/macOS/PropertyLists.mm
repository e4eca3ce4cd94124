#include "Platform/PropertyLists.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/FlutterValues.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::optional<ValueMap> dictionaryFromFile(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place == nil) return std::nullopt;
  const Value value = valueFromFlutter([NSDictionary dictionaryWithContentsOfFile:place]);
  const auto* map = value.getIf<ValueMap>();
  return map != nullptr ? std::optional(*map) : std::nullopt;
}

}  // namespace tapdeck::platform
