#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#include <type_traits>
#include <vector>

namespace tapdeck::recording {

/// An object to hand out in the place of a Quartz one: a Core Foundation data object that holds
/// `content` and `extra` bytes of zero behind it, so that the real CFRelease ends it on every
/// system.
template <typename Reference, typename Content>
Reference makeObject(const Content& content, size_t extra = 0) {
  static_assert(std::is_trivially_copyable_v<Content>);
  std::vector<UInt8> bytes(sizeof content + extra);
  std::memcpy(bytes.data(), &content, sizeof content);
  CFMutableDataRef data = CFDataCreateMutable(nullptr, 0);
  CFDataAppendBytes(data, bytes.data(), static_cast<CFIndex>(bytes.size()));
  return reinterpret_cast<Reference>(data);
}

template <typename Content>
Content contentOf(const void* object) {
  Content content;
  std::memcpy(&content, CFDataGetBytePtr(static_cast<CFDataRef>(object)), sizeof content);
  return content;
}

}  // namespace tapdeck::recording
