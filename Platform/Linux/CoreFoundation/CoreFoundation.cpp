#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Engine/Utf8.h"
#include "Platform/Linux/CoreFoundation/Object.h"

using tapdeck::cf::Object;

namespace {

const Object& objectOf(CFTypeRef reference) {
  return *static_cast<const Object*>(reference);
}

}  // namespace

struct __CFBoolean final : Object {};

struct __CFString final : Object {
  explicit __CFString(std::string content) : text(std::move(content)) {}
  bool equals(const Object& other) const override {
    const auto* string = dynamic_cast<const __CFString*>(&other);
    return string != nullptr && string->text == text;
  }
  const std::string text;
};

struct __CFData final : Object {
  bool equals(const Object& other) const override {
    const auto* data = dynamic_cast<const __CFData*>(&other);
    return data != nullptr && data->bytes == bytes;
  }
  std::vector<UInt8> bytes;
};

struct __CFNumber final : Object {
  explicit __CFNumber(double content) : value(content) {}
  bool equals(const Object& other) const override {
    const auto* number = dynamic_cast<const __CFNumber*>(&other);
    return number != nullptr && number->value == value;
  }
  const double value;
};

struct __CFDictionary final : Object {
  ~__CFDictionary() override {
    for (const auto& [key, value] : entries) {
      CFRelease(key);
      CFRelease(value);
    }
  }
  std::vector<std::pair<CFTypeRef, CFTypeRef>> entries;
};

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0};

// never released to nothing: each starts with a reference of its own
const CFBooleanRef kCFBooleanTrue = new __CFBoolean;
const CFBooleanRef kCFBooleanFalse = new __CFBoolean;

CFTypeRef CFRetain(CFTypeRef object) {
  objectOf(object).retain();
  return object;
}

void CFRelease(CFTypeRef object) {
  objectOf(object).release();
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b) {
  return static_cast<Boolean>(objectOf(a).equals(objectOf(b)));
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  if (encoding != kCFStringEncodingUTF8 || !tapdeck::isUtf8(text)) return nullptr;
  return new __CFString(text);
}

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length) {
  CFMutableDataRef data = CFDataCreateMutable(allocator, 0);
  CFDataAppendBytes(data, bytes, length);
  return data;
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex) {
  return new __CFData;
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length) {
  data->bytes.insert(data->bytes.end(), bytes, bytes + length);
}

CFIndex CFDataGetLength(CFDataRef data) {
  return static_cast<CFIndex>(data->bytes.size());
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
  return data->bytes.data();
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
  if (type != kCFNumberDoubleType) return nullptr;
  return new __CFNumber(*static_cast<const double*>(value));
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
  if (type != kCFNumberDoubleType) return 0;
  *static_cast<double*>(value) = number->value;
  return 1;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks*,
                                   const CFDictionaryValueCallBacks*) {
  auto* dictionary = new __CFDictionary;
  for (CFIndex i = 0; i < count; ++i) {
    dictionary->entries.emplace_back(CFRetain(keys[i]), CFRetain(values[i]));
  }
  return dictionary;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  for (const auto& [candidate, value] : dictionary->entries) {
    if (CFEqual(candidate, key) != 0) return value;
  }
  return nullptr;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  return static_cast<CFIndex>(dictionary->entries.size());
}
