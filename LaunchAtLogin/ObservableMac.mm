#import "LaunchAtLogin/ObservableMac.h"

#include "LaunchAtLogin/LaunchAtLogin.h"

using tapdeck::LaunchAtLogin;

static NSString* const kIsEnabled = @"isEnabled";

@implementation LaunchAtLoginObservable {
  std::shared_ptr<void> _observation;
}

+ (LaunchAtLoginObservable*)shared {
  static LaunchAtLoginObservable* const instance = [[self alloc] initObserving];
  return instance;
}

// the module sends the brackets, for whoever sets the value
+ (BOOL)automaticallyNotifiesObserversOfIsEnabled {
  return NO;
}

- (instancetype)initObserving {
  self = [super init];
  if (self == nil) return nil;
  __weak LaunchAtLoginObservable* weakSelf = self;
  _observation = LaunchAtLogin::shared().keyValueNotices().observe(
      [weakSelf](LaunchAtLogin::KeyValueNotice notice) { [weakSelf forward:notice]; });
  return self;
}

- (void)forward:(LaunchAtLogin::KeyValueNotice)notice {
  switch (notice) {
    case LaunchAtLogin::KeyValueNotice::willChange:
      [self willChangeValueForKey:kIsEnabled];
      break;
    case LaunchAtLogin::KeyValueNotice::didChange:
      [self didChangeValueForKey:kIsEnabled];
      break;
  }
}

- (BOOL)isEnabled {
  return LaunchAtLogin::shared().isEnabled();
}

- (void)setIsEnabled:(BOOL)isEnabled {
  LaunchAtLogin::shared().setEnabled(isEnabled);
}

@end
