#include "Platform/Workspace.h"

#import <AppKit/AppKit.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

NSURL* parse(const std::string& text) {
  NSString* string = stringFromUtf8(text);
  return string == nil ? nil : [NSURL URLWithString:string];
}

}  // namespace

std::optional<URL> urlWithString(const std::string& text) {
  if (parse(text) == nil) return std::nullopt;
  return URL{text};
}

std::optional<std::string> schemeOf(const URL& url) {
  NSString* scheme = parse(url.text).scheme;
  if (scheme == nil) return std::nullopt;
  return utf8FromString(scheme);
}

void openURL(const URL& url) {
  [NSWorkspace.sharedWorkspace openURL:parse(url.text)];
}

}  // namespace tapdeck::platform
