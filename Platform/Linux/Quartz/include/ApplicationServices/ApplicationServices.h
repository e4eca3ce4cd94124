#pragma once

// The part of Application Services that the host uses: Core Graphics and the Accessibility API.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

extern "C" {

/// The key of AXIsProcessTrustedWithOptions whose true value brings the question before the user.
extern const CFStringRef kAXTrustedCheckOptionPrompt;

/// Whether the user lets the host control the computer; never asks. Main thread only.
Boolean AXIsProcessTrusted();
/// The same; asks the user when trust is missing and `options` say so. Does not wait for an answer.
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);

}  // extern "C"
