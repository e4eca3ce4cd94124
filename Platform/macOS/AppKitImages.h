#pragma once

#import <AppKit/AppKit.h>

#include "Platform/Images.h"

namespace tapdeck::platform {

struct Image {
  NSImage* _Nonnull image;
};

/// Keeps the image; null for nil.
std::shared_ptr<const Image> imageOf(NSImage* _Nullable image);

}  // namespace tapdeck::platform
