#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::string utf8FromString(NSString* string) {
  // UTF8String would end at the first NUL and is null where a UTF-16 half stands alone
  NSData* data = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
  return std::string(static_cast<const char*>(data.bytes), data.length);
}

NSString* stringFromUtf8(const std::string& text) {
  return [[NSString alloc] initWithBytes:text.data()
                                  length:text.size()
                                encoding:NSUTF8StringEncoding];
}

NSString* nameFromUtf8(const std::string& name) {
  NSString* string = stringFromUtf8(name);
  return string != nil ? string : @"";
}

}  // namespace tapdeck::platform
