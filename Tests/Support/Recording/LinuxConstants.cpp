#include <ApplicationServices/ApplicationServices.h>
#include <ImageIO/ImageIO.h>

const CFStringRef kAXTrustedCheckOptionPrompt =
    CFStringCreateWithCString(nullptr, "AXTrustedCheckOptionPrompt", kCFStringEncodingUTF8);
const CFStringRef kCGImageDestinationLossyCompressionQuality = CFStringCreateWithCString(
    nullptr, "kCGImageDestinationLossyCompressionQuality", kCFStringEncodingUTF8);
