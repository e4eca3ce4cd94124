#include <ApplicationServices/ApplicationServices.h>

const CFStringRef kAXTrustedCheckOptionPrompt =
    CFStringCreateWithCString(nullptr, "AXTrustedCheckOptionPrompt", kCFStringEncodingUTF8);
