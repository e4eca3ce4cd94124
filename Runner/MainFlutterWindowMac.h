#import <AppKit/AppKit.h>

/// The one main window, made by the main interface file. It owns the stored state of the C++ class
/// of the same name and forwards to it what AppKit sends.
@interface MainFlutterWindow : NSWindow
@end
