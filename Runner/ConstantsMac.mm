// What the host and its fronts write as numbers, held against Apple's headers when the application
// is built. Nothing of it is left in the program.

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#include <Carbon/Carbon.h>
#include <IOKit/hidsystem/IOLLEvent.h>
#include <IOKit/hidsystem/ev_keymap.h>
#include <ServiceManagement/ServiceManagement.h>

#include <algorithm>

#include "Platform/Applications.h"
#include "Platform/LoginItems.h"
#include "Runner/Input/KeyRows.h"
#include "Runner/Input/MediaKeys.h"

namespace tapdeck {
namespace {

// ---- keys

constexpr KeyRow kSystemKeys[] = {{"a", kVK_ANSI_A},
                                  {"b", kVK_ANSI_B},
                                  {"c", kVK_ANSI_C},
                                  {"d", kVK_ANSI_D},
                                  {"e", kVK_ANSI_E},
                                  {"f", kVK_ANSI_F},
                                  {"g", kVK_ANSI_G},
                                  {"h", kVK_ANSI_H},
                                  {"i", kVK_ANSI_I},
                                  {"j", kVK_ANSI_J},
                                  {"k", kVK_ANSI_K},
                                  {"l", kVK_ANSI_L},
                                  {"m", kVK_ANSI_M},
                                  {"n", kVK_ANSI_N},
                                  {"o", kVK_ANSI_O},
                                  {"p", kVK_ANSI_P},
                                  {"q", kVK_ANSI_Q},
                                  {"r", kVK_ANSI_R},
                                  {"s", kVK_ANSI_S},
                                  {"t", kVK_ANSI_T},
                                  {"u", kVK_ANSI_U},
                                  {"v", kVK_ANSI_V},
                                  {"w", kVK_ANSI_W},
                                  {"x", kVK_ANSI_X},
                                  {"y", kVK_ANSI_Y},
                                  {"z", kVK_ANSI_Z},
                                  {"0", kVK_ANSI_0},
                                  {"1", kVK_ANSI_1},
                                  {"2", kVK_ANSI_2},
                                  {"3", kVK_ANSI_3},
                                  {"4", kVK_ANSI_4},
                                  {"5", kVK_ANSI_5},
                                  {"6", kVK_ANSI_6},
                                  {"7", kVK_ANSI_7},
                                  {"8", kVK_ANSI_8},
                                  {"9", kVK_ANSI_9},
                                  {"space", kVK_Space},
                                  {"return", kVK_Return},
                                  {"enter", kVK_Return},
                                  {"tab", kVK_Tab},
                                  {"delete", kVK_Delete},
                                  {"backspace", kVK_Delete},
                                  {"escape", kVK_Escape},
                                  {"esc", kVK_Escape},
                                  {"left", kVK_LeftArrow},
                                  {"right", kVK_RightArrow},
                                  {"down", kVK_DownArrow},
                                  {"up", kVK_UpArrow},
                                  {"arrowleft", kVK_LeftArrow},
                                  {"arrowright", kVK_RightArrow},
                                  {"arrowdown", kVK_DownArrow},
                                  {"arrowup", kVK_UpArrow},
                                  {"f1", kVK_F1},
                                  {"f2", kVK_F2},
                                  {"f3", kVK_F3},
                                  {"f4", kVK_F4},
                                  {"f5", kVK_F5},
                                  {"f6", kVK_F6},
                                  {"f7", kVK_F7},
                                  {"f8", kVK_F8},
                                  {"f9", kVK_F9},
                                  {"f10", kVK_F10},
                                  {"f11", kVK_F11},
                                  {"f12", kVK_F12},
                                  {"shift", kVK_Shift},
                                  {"control", kVK_Control},
                                  {"option", kVK_Option},
                                  {"command", kVK_Command},
                                  {"ctrl", kVK_Control},
                                  {"alt", kVK_Option},
                                  {"cmd", kVK_Command},
                                  {"home", kVK_Home},
                                  {"end", kVK_End},
                                  {"pageup", kVK_PageUp},
                                  {"pagedown", kVK_PageDown},
                                  {"capslock", kVK_CapsLock},
                                  {"-", kVK_ANSI_Minus},
                                  {"=", kVK_ANSI_Equal},
                                  {"[", kVK_ANSI_LeftBracket},
                                  {"]", kVK_ANSI_RightBracket},
                                  {"\\", kVK_ANSI_Backslash},
                                  {";", kVK_ANSI_Semicolon},
                                  {"'", kVK_ANSI_Quote},
                                  {",", kVK_ANSI_Comma},
                                  {".", kVK_ANSI_Period},
                                  {"/", kVK_ANSI_Slash},
                                  {"`", kVK_ANSI_Grave}};

static_assert(std::ranges::equal(kKeyRows, kSystemKeys,
                                 [](const KeyRow& ours, const KeyRow& system) {
                                   return ours.name == system.name && ours.code == system.code;
                                 }));

// ---- media keys: a system-defined event as the keyboard's driver makes it

static_assert(static_cast<int>(MediaKey::playPause) == NX_KEYTYPE_PLAY);
static_assert(static_cast<int>(MediaKey::next) == NX_KEYTYPE_NEXT);
static_assert(static_cast<int>(MediaKey::previous) == NX_KEYTYPE_PREVIOUS);
static_assert(NSEventTypeSystemDefined == 14);
static_assert(NX_SUBTYPE_AUX_CONTROL_BUTTONS == 8);
static_assert(NX_KEYDOWN << 8 == 0xa00);
static_assert(NX_KEYUP << 8 == 0xb00);

// ---- applications and their windows

static_assert(static_cast<NSInteger>(platform::ActivationPolicy::regular) ==
              NSApplicationActivationPolicyRegular);
static_assert(static_cast<NSInteger>(platform::ActivationPolicy::accessory) ==
              NSApplicationActivationPolicyAccessory);
static_assert(static_cast<NSInteger>(platform::ActivationPolicy::prohibited) ==
              NSApplicationActivationPolicyProhibited);
static_assert(kAXErrorSuccess == 0);
static_assert(kAXValueCGPointType == 1);

// ---- the laser dot

static_assert(NSWindowStyleMaskBorderless == 0);
static_assert((NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorStationary |
               NSWindowCollectionBehaviorIgnoresCycle |
               NSWindowCollectionBehaviorFullScreenAuxiliary) == 0x151);

// ---- the login item

// a function only because these names may stand nowhere else before macOS 13
[[maybe_unused]] API_AVAILABLE(macos(13.0)) void loginItemStatusesAgree() {
  using platform::LoginItemStatus;
  static_assert(static_cast<NSInteger>(LoginItemStatus::notRegistered) ==
                SMAppServiceStatusNotRegistered);
  static_assert(static_cast<NSInteger>(LoginItemStatus::enabled) == SMAppServiceStatusEnabled);
  static_assert(static_cast<NSInteger>(LoginItemStatus::requiresApproval) ==
                SMAppServiceStatusRequiresApproval);
  static_assert(static_cast<NSInteger>(LoginItemStatus::notFound) == SMAppServiceStatusNotFound);
  static_assert(SMAppServiceStatusEnabled == 1);
}

}  // namespace
}  // namespace tapdeck
