#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/// The process's LaunchAtLogin for key-value coding, observing and Cocoa bindings, under the key
/// `isEnabled`. Main thread only.
@interface LaunchAtLoginObservable : NSObject

/// The one; it lives until the process ends.
@property(class, readonly) LaunchAtLoginObservable* shared;

/// Reads ask the system; a failure to set shows in the next read only.
@property(nonatomic) BOOL isEnabled;

- (instancetype)init NS_UNAVAILABLE;
+ (instancetype)new NS_UNAVAILABLE;

@end

NS_ASSUME_NONNULL_END
