#import "LaunchAtLogin/ToggleMac.h"

#import "LaunchAtLogin/ObservableMac.h"

static NSString* const kIsEnabled = @"isEnabled";

@implementation LaunchAtLoginToggle

- (instancetype)init {
  return [self initWithLabel:@"Launch at login"];
}

- (instancetype)initWithLabel:(NSString*)label {
  self = [super initWithFrame:NSZeroRect];
  if (self == nil) return nil;
  self.buttonType = NSButtonTypeSwitch;
  self.title = label;
  self.target = self;
  self.action = @selector(apply);
  [self sizeToFit];
  // not a binding: it would leave the switch as it was pressed when the system refuses
  [LaunchAtLoginObservable.shared addObserver:self
                                   forKeyPath:kIsEnabled
                                      options:NSKeyValueObservingOptionInitial
                                      context:nullptr];
  return self;
}

- (void)dealloc {
  [LaunchAtLoginObservable.shared removeObserver:self forKeyPath:kIsEnabled];
}

- (void)apply {
  LaunchAtLoginObservable.shared.isEnabled = self.state == NSControlStateValueOn;
}

- (void)refresh {
  self.state =
      LaunchAtLoginObservable.shared.isEnabled ? NSControlStateValueOn : NSControlStateValueOff;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  if (object == LaunchAtLoginObservable.shared) {
    [self refresh];
  } else {
    [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
  }
}

// the user may have changed it in the system's settings since
- (void)viewDidMoveToWindow {
  [super viewDidMoveToWindow];
  [self refresh];
}

@end
