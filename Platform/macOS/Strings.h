#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace tapdeck::platform {

/// The text in UTF-8, embedded NULs kept; a UTF-16 half without its other half becomes "?". Empty
/// for nil. Any thread.
std::string utf8FromString(NSString* _Nullable string);

/// The text as a new string; nil when it is not UTF-8. Any thread.
NSString* _Nullable stringFromUtf8(const std::string& text);

/// The same for a name that the host itself makes, which is UTF-8; empty when it is not. Any
/// thread.
NSString* _Nonnull nameFromUtf8(const std::string& name);

}  // namespace tapdeck::platform
