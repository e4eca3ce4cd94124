#include "Platform/Pasteboard.h"

#import <AppKit/AppKit.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

std::optional<std::string> pasteboardString() {
  NSString* text = [NSPasteboard.generalPasteboard stringForType:NSPasteboardTypeString];
  if (text == nil) return std::nullopt;
  return utf8FromString(text);
}

void clearPasteboard() {
  [NSPasteboard.generalPasteboard clearContents];
}

void setPasteboardString(const std::string& text) {
  // the channel delivers UTF-8 only; text that is not leaves the pasteboard as it is
  if (NSString* string = stringFromUtf8(text)) {
    [NSPasteboard.generalPasteboard setString:string forType:NSPasteboardTypeString];
  }
}

}  // namespace tapdeck::platform
