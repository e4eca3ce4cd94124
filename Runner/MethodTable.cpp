#include "Runner/MethodTable.h"

#include <utility>

#include "Platform/Queues.h"
#include "Runner/Apps/Catalogue.h"
#include "Runner/Apps/Icon.h"
#include "Runner/Apps/Launching.h"
#include "Runner/Clipboard.h"
#include "Runner/Display/DisplayGeometry.h"
#include "Runner/Display/LaserPointer.h"
#include "Runner/Display/ScreenCapture.h"
#include "Runner/Display/WindowPlacement.h"
#include "Runner/Input/Keyboard.h"
#include "Runner/Input/Pointer.h"
#include "Runner/Input/Scrolling.h"
#include "Runner/Input/TextTyping.h"
#include "Runner/Media/NowPlaying.h"
#include "Runner/Media/PlayerCommands.h"
#include "Runner/Media/SystemActions.h"
#include "Runner/Permissions/Accessibility.h"
#include "Runner/Permissions/Sandbox.h"
#include "Runner/Permissions/ScreenRecording.h"

namespace tapdeck {
namespace {

using platform::QualityOfService;

void invalidArguments(Reply& reply, const char* message) {
  reply.error("INVALID_ARGS", message);
}

// ---- applications

void getRunningApps(const ControlCall&, Reply reply) {
  reply.success(Value(applicationCatalogue()));
}

void getAppIcon(const ControlCall& call, Reply reply) {
  const auto bundleId = call.arguments.string("bundleId");
  reply.success(Value(bundleId ? applicationIcon(*bundleId) : ""));
}

void launchApp(const ControlCall& call, Reply reply) {
  const auto bundleId = call.arguments.string("bundleId");
  if (!bundleId) return invalidArguments(reply, "bundleId required");
  launchApplication(*bundleId);
  reply.success();
}

// ---- pointer

void moveMouseRow(const ControlCall& call, Reply reply) {
  const auto dx = call.arguments.number("dx");
  const auto dy = call.arguments.number("dy");
  if (!dx || !dy) return invalidArguments(reply, "Invalid arguments");
  moveMouse(*call.window, *dx, *dy);
  reply.success();
}

void moveMouseAbsRow(const ControlCall& call, Reply reply) {
  const auto x = call.arguments.number("x");
  const auto y = call.arguments.number("y");
  if (!x || !y) return invalidArguments(reply, "x and y required");
  moveMouseAbs(*call.window, *x, *y, call.arguments.string("display"));
  reply.success();
}

void screenCursorRow(const ControlCall& call, Reply reply) {
  reply.success(Value(screenCursor(call.arguments.string("display"))));
}

void hideCursorRow(const ControlCall& call, Reply reply) {
  hideCursor(call.window.get());
  reply.success();
}

void showCursorRow(const ControlCall& call, Reply reply) {
  showCursor(call.window.get());
  reply.success();
}

void debugWarpRow(const ControlCall& call, Reply reply) {
  const auto x = call.arguments.number("x");
  const auto y = call.arguments.number("y");
  debugWarp(x && y ? std::optional(CGPointMake(*x, *y)) : std::nullopt);
  reply.success();
}

void clickRow(const ControlCall& call, Reply reply) {
  if (const auto button = call.arguments.string("button")) click(*call.window, *button);
  reply.success();
}

void doubleClickRow(const ControlCall&, Reply reply) {
  doubleClick();
  reply.success();
}

void mouseDownRow(const ControlCall& call, Reply reply) {
  mouseDown(*call.window, call.arguments.string("button").value_or("left"));
  reply.success();
}

void mouseUpRow(const ControlCall& call, Reply reply) {
  mouseUp(*call.window, call.arguments.string("button").value_or("left"));
  reply.success();
}

template <ScrollAxis axis>
void scrollRow(const ControlCall& call, Reply reply) {
  const auto amount = call.arguments.integer("amount");
  const auto direction = call.arguments.integer("direction");
  if (amount && direction) postScroll(*amount, *direction, axis);
  reply.success();
}

// ---- keys and text

void keyPressRow(const ControlCall& call, Reply reply) {
  if (const auto key = call.arguments.string("key")) keyPress(*call.window, *key);
  reply.success();
}

void keyDownRow(const ControlCall& call, Reply reply) {
  if (const auto key = call.arguments.string("key")) keyDown(*call.window, *key);
  reply.success();
}

void keyUpRow(const ControlCall& call, Reply reply) {
  if (const auto key = call.arguments.string("key")) keyUp(*call.window, *key);
  reply.success();
}

void typeTextRow(const ControlCall& call, Reply reply) {
  if (const auto text = call.arguments.string("text")) typeUnicodeText(*text);
  reply.success();
}

// ---- displays and screen

void getDisplays(const ControlCall&, Reply reply) {
  reply.success(Value(allDisplays()));
}

void moveWindowToDisplayRow(const ControlCall& call, Reply reply) {
  const auto display = call.arguments.string("display");
  if (!display) return invalidArguments(reply, "display required");
  moveWindowToDisplay(*call.window, *display);
  reply.success();
}

void showLaserRow(const ControlCall& call, Reply reply) {
  showLaser(call.window);
  reply.success();
}

void hideLaserRow(const ControlCall& call, Reply reply) {
  hideLaser(call.window);
  reply.success();
}

void screenCaptureSupported(const ControlCall&, Reply reply) {
  reply.success(Value(true));
}

void captureScreenRow(const ControlCall& call, Reply reply) {
  CaptureRequest request;
  request.display = call.arguments.string("display");
  request.maxWidth = call.arguments.integer("maxWidth").value_or(request.maxWidth);
  request.quality = call.arguments.integer("quality").value_or(request.quality);
  request.force = call.arguments.boolean("force").value_or(request.force);
  reply.success(Value(captureScreen(*call.window, request)));
}

void resetScreenCaptureRow(const ControlCall& call, Reply reply) {
  resetScreenCapture(*call.window);
  reply.success();
}

// ---- permissions

void outsideSandbox(const ControlCall&, Reply reply) {
  reply.success(Value(isOutsideSandbox()));
}

void screenPermissionGranted(const ControlCall&, Reply reply) {
  reply.success(Value(screenRecordingGranted()));
}

void requestScreenPermission(const ControlCall&, Reply reply) {
  reply.success(Value(requestScreenRecording()));
}

void openScreenRecordingSettingsRow(const ControlCall&, Reply reply) {
  openScreenRecordingSettings();
  reply.success();
}

void isAccessibilityTrusted(const ControlCall& call, Reply reply) {
  reply.success(Value(refreshAccessibilityTrust(*call.window)));
}

void requestAccessibilityPermissionRow(const ControlCall& call, Reply reply) {
  reply.success(Value(requestAccessibilityPermission(*call.window)));
}

void openAccessibilitySettingsRow(const ControlCall&, Reply reply) {
  openAccessibilitySettings();
  reply.success();
}

// ---- what works in the background

/// Runs `work` on a background queue and replies from the main one. The window is held only while
/// the work runs and is let go of by the work on the main queue, whose thread its fields belong to;
/// when it is gone, the reply is null and `work` does not run.
void replyFromBackground(QualityOfService quality, const ControlCall& call, Reply reply,
                         std::function<Value()> work) {
  auto pending = std::make_shared<Reply>(std::move(reply));
  platform::asyncOnGlobal(quality, [weak = std::weak_ptr(call.window), pending = std::move(pending),
                                    work = std::move(work)]() mutable {
    std::shared_ptr<MainFlutterWindow> window = weak.lock();
    Value result = window ? work() : Value();
    platform::asyncOnMain([window = std::move(window), pending = std::move(pending),
                           result = std::move(result)]() mutable {
      pending->success(std::move(result));
      window.reset();  // not left to whoever destroys this closure
    });
  });
}

void getNowPlaying(const ControlCall& call, Reply reply) {
  const bool includeArt = call.arguments.boolean("includeArt").value_or(false);
  replyFromBackground(QualityOfService::utility, call, std::move(reply),
                      [includeArt] { return nowPlaying(includeArt); });
}

void mediaSeekRow(const ControlCall& call, Reply reply) {
  const double position = call.arguments.number("position").value_or(0.0);
  replyFromBackground(QualityOfService::userInitiated, call, std::move(reply), [position] {
    mediaSeek(position);
    return Value();
  });
}

// ---- media and system

/// What takes no arguments and tells nothing.
template <void (*action)()>
void actionRow(const ControlCall&, Reply reply) {
  action();
  reply.success();
}

void getVolumeLevel(const ControlCall&, Reply reply) {
  reply.success(Value(volumeLevel()));
}

// ---- clipboard

void getClipboard(const ControlCall&, Reply reply) {
  reply.success(Value(clipboardText()));
}

void setClipboard(const ControlCall& call, Reply reply) {
  const auto text = call.arguments.string("text");
  if (text) setClipboardText(*text);
  reply.success(Value(text.has_value()));
}

constexpr ControlMethod kControlMethods[] = {
    {"getRunningApps", WindowGone::replyNull, getRunningApps},
    {"getAppIcon", WindowGone::replyEmptyString, getAppIcon},
    {"launchApp", WindowGone::replyNull, launchApp},
    {"moveMouse", WindowGone::replyNull, moveMouseRow},
    {"getDisplays", WindowGone::replyEmptyList, getDisplays},
    {"supportsWindowMove", WindowGone::runAnyway, outsideSandbox},
    {"moveMouseAbs", WindowGone::replyNull, moveMouseAbsRow},
    {"moveWindowToDisplay", WindowGone::replyNull, moveWindowToDisplayRow},
    {"screenCaptureSupported", WindowGone::runAnyway, screenCaptureSupported},
    {"screenPermissionGranted", WindowGone::runAnyway, screenPermissionGranted},
    {"requestScreenPermission", WindowGone::runAnyway, requestScreenPermission},
    {"openScreenRecordingSettings", WindowGone::runAnyway, openScreenRecordingSettingsRow},
    {"captureScreen", WindowGone::replyNull, captureScreenRow},
    {"resetScreenCapture", WindowGone::replyNull, resetScreenCaptureRow},
    {"screenCursor", WindowGone::replyNull, screenCursorRow},
    {"hideCursor", WindowGone::runAnyway, hideCursorRow},
    {"showCursor", WindowGone::runAnyway, showCursorRow},
    {"isAccessibilityTrusted", WindowGone::replyFalse, isAccessibilityTrusted},
    {"requestAccessibilityPermission", WindowGone::replyFalse, requestAccessibilityPermissionRow},
    {"openAccessibilitySettings", WindowGone::replyNull, openAccessibilitySettingsRow},
    {"debugWarp", WindowGone::replyNull, debugWarpRow},
    {"click", WindowGone::replyNull, clickRow},
    {"doubleClick", WindowGone::replyNull, doubleClickRow},
    {"mouseDown", WindowGone::replyNull, mouseDownRow},
    {"mouseUp", WindowGone::replyNull, mouseUpRow},
    {"scroll", WindowGone::replyNull, scrollRow<ScrollAxis::vertical>},
    {"scrollHorizontal", WindowGone::replyNull, scrollRow<ScrollAxis::horizontal>},
    {"keyPress", WindowGone::replyNull, keyPressRow},
    {"keyDown", WindowGone::replyNull, keyDownRow},
    {"keyUp", WindowGone::replyNull, keyUpRow},
    {"typeText", WindowGone::replyNull, typeTextRow},
    {"showLaser", WindowGone::replyNull, showLaserRow},
    {"hideLaser", WindowGone::replyNull, hideLaserRow},
    {"getVolumeLevel", WindowGone::replyVolume50, getVolumeLevel},
    {"supportsNowPlaying", WindowGone::runAnyway, outsideSandbox},
    {"getNowPlaying", WindowGone::runAnyway, getNowPlaying},
    {"mediaSeek", WindowGone::runAnyway, mediaSeekRow},
    {"mediaPlayPause", WindowGone::replyNull, actionRow<mediaPlayPause>},
    {"mediaNext", WindowGone::replyNull, actionRow<mediaNext>},
    {"mediaPrevious", WindowGone::replyNull, actionRow<mediaPrevious>},
    {"volumeUp", WindowGone::replyNull, actionRow<volumeUp>},
    {"volumeDown", WindowGone::replyNull, actionRow<volumeDown>},
    {"volumeMute", WindowGone::replyNull, actionRow<volumeMute>},
    {"lockScreen", WindowGone::replyNull, actionRow<lockScreen>},
    {"sleepSystem", WindowGone::replyNull, actionRow<sleepSystem>},
    {"shutdownSystem", WindowGone::replyNull, actionRow<shutDownSystem>},
    {"restartSystem", WindowGone::replyNull, actionRow<restartSystem>},
    {"getClipboard", WindowGone::runAnyway, getClipboard},
    {"setClipboard", WindowGone::runAnyway, setClipboard},
};

static_assert(std::size(kControlMethods) == 49);

}  // namespace

std::span<const ControlMethod> controlMethods() {
  return kControlMethods;
}

}  // namespace tapdeck
