#pragma once

#include <AppKit/AppKit.h>

// The application delegate: one shared instance for the whole run (NSApplication holds its
// delegate weakly). At launch it puts the status item in the menu bar and starts sampling; at
// termination it stops the sampling timer. Main thread only.
@interface QMAppDelegate : NSObject <NSApplicationDelegate>
+ (QMAppDelegate*)shared;
@end
