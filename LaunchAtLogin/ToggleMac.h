#pragma once

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/// A switch for a settings window that shows whether the application is launched at login and sets
/// it. When the system refuses, the switch goes back. Main thread only.
@interface LaunchAtLoginToggle : NSButton

/// With the label "Launch at login".
- (instancetype)init;
- (instancetype)initWithLabel:(NSString*)label NS_DESIGNATED_INITIALIZER;

- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;

@end

NS_ASSUME_NONNULL_END
