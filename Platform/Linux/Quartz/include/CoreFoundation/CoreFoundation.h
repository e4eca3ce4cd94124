#pragma once

// The part of Core Foundation that the host uses, under its documented names and ownership rules:
// what a Create or Copy function gives belongs to the caller, who ends it with CFRelease; what a
// Get function gives belongs to its container. Any thread, one thread at a time for an object.

#include <cstdint>

extern "C" {

using Boolean = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFStringEncoding = uint32_t;
using UInt8 = uint8_t;
using UniChar = uint16_t;
using UniCharCount = unsigned long;

using CFTypeRef = const void*;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFDataRef = const struct __CFData*;
using CFMutableDataRef = struct __CFData*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFBooleanRef = const struct __CFBoolean*;
using CFNumberRef = const struct __CFNumber*;

/// Which of the two built-in ways of keeping keys or values a dictionary uses. Here every
/// dictionary retains and compares Core Foundation objects; the call-back records only mark that.
struct CFDictionaryKeyCallBacks {
  CFIndex version;
};
struct CFDictionaryValueCallBacks {
  CFIndex version;
};
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
Boolean CFEqual(CFTypeRef a, CFTypeRef b);

/// Null when the text is not UTF-8; `encoding` must be UTF-8.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);

/// `bytes` are copied; a mutable one with `capacity` 0 grows without limit.
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8* CFDataGetBytePtr(CFDataRef data);

enum CFNumberType : CFIndex { kCFNumberDoubleType = 13 };
/// `type` must be kCFNumberDoubleType, and `value` points to a double.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);

}  // extern "C"
