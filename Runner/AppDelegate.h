#import <FlutterMacOS/FlutterMacOS.h>

/// The application's delegate, made by the main interface file.
@interface AppDelegate : FlutterAppDelegate
@end
