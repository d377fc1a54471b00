#pragma once

#include <AppKit/AppKit.h>

// The application delegate: one shared instance for the whole run (NSApplication holds its
// delegate weakly). When launching has finished it builds the services and the menu-bar shell
// (which starts sampling) and starts fan control if comfort cooling is on; when the application
// terminates, by the Quit item or by SIGTERM/SIGINT, it undoes what would outlive the process:
// paused applications are resumed, the fans are handed back, sampling stops. Main thread only.
@interface QMAppDelegate : NSObject <NSApplicationDelegate>
+ (QMAppDelegate*)shared;
@end
