#include "Platform/OverlayWindow.h"

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

namespace tapdeck::platform {
namespace {

NSColor* calibrated(const Colour& colour) {
  return [NSColor colorWithCalibratedRed:colour.red
                                   green:colour.green
                                    blue:colour.blue
                                   alpha:colour.alpha];
}

NSView* newContentView(const OverlayStyle& style) {
  NSView* view = [[NSView alloc] initWithFrame:style.contentRect];
  view.wantsLayer = YES;
  view.layer.backgroundColor = calibrated(style.layerBackground).CGColor;
  view.layer.cornerRadius = style.cornerRadius;
  view.layer.shadowColor = calibrated(style.layerShadow).CGColor;
  view.layer.shadowOpacity = style.shadowOpacity;
  view.layer.shadowRadius = style.shadowRadius;
  view.layer.shadowOffset = style.shadowOffset;
  return view;
}

NSWindow* newWindow(const OverlayStyle& style) {
  NSWindow* window = [[NSWindow alloc] initWithContentRect:style.contentRect
                                                 styleMask:style.styleMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  // hiding the application must not hide what points at others
  window.canHide = NO;
  // ARC owns it
  window.releasedWhenClosed = NO;
  window.opaque = style.isOpaque;
  window.backgroundColor = calibrated(style.background);
  window.hasShadow = style.hasShadow;
  window.ignoresMouseEvents = style.ignoresMouseEvents;
  window.alphaValue = style.alpha;
  window.level = style.level;
  window.collectionBehavior = style.collectionBehaviour;
  window.contentView = newContentView(style);
  return window;
}

}  // namespace

struct OverlayWindow::Window {
  NSWindow* window;
};

OverlayWindow::OverlayWindow(const OverlayStyle& style)
    : _window(std::make_unique<Window>(Window{newWindow(style)})) {}

OverlayWindow::~OverlayWindow() {
  // AppKit holds on to a window for as long as it is on the screen
  [_window->window orderOut:nil];
}

CGRect OverlayWindow::frame() const {
  return _window->window.frame;
}

void OverlayWindow::setFrameOrigin(CGPoint origin) {
  [_window->window setFrameOrigin:origin];
}

void OverlayWindow::orderFrontRegardless() {
  [_window->window orderFrontRegardless];
}

void OverlayWindow::orderOut() {
  [_window->window orderOut:nil];
}

}  // namespace tapdeck::platform
