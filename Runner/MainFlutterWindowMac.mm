#import "Runner/MainFlutterWindowMac.h"

#include <memory>

#import "Platform/macOS/FlutterBridge.h"
#include "Runner/MainFlutterWindow.h"
#include "Runner/Waking.h"

@implementation MainFlutterWindow {
  std::shared_ptr<tapdeck::MainFlutterWindow> _state;
}

- (void)awakeFromNib {
  FlutterViewController* viewController = [[FlutterViewController alloc] init];
  const NSRect frame = self.frame;
  [self setContentViewController:viewController];
  // the content view controller brings its own size; the interface file's stands
  [self setFrame:frame display:NO];
  tapdeck::wakeMainWindow(_state,
                          std::make_shared<tapdeck::platform::FlutterBridge>(viewController));
  [super awakeFromNib];
}

- (void)becomeKeyWindow {
  [super becomeKeyWindow];
  _state->showCursorOnBecomingKey();
}

- (void)makeKeyAndOrderFront:(id)sender {
  [super makeKeyAndOrderFront:sender];
  _state->showCursorOnBecomingKey();
}

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag {
  // before the base class's initialiser, which may already send the messages above
  _state = std::make_shared<tapdeck::MainFlutterWindow>();
  return [super initWithContentRect:contentRect
                          styleMask:style
                            backing:backingStoreType
                              defer:flag];
}

@end
