#include <AppKit/AppKit.h>

#include "app/macos/app_delegate_darwin.h"

// A menu-bar-only program: no Dock icon, no main window, no menu bar of its own, and the dark
// appearance whatever the system uses.
int main(int argc, const char* argv[]) {
  (void)argc;
  (void)argv;
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    application.delegate = QMAppDelegate.shared;
    [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
    application.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    [application run];
  }
  return 0;
}
