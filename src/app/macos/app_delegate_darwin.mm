#include "app/macos/app_delegate_darwin.h"

#include <string>

#include "app/frontend/status_text.h"
#include "sampling/monitor.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"

namespace {

NSString* toNSString(const std::string& text) {
  // A string that is not valid UTF-8 (it should never be) shows as empty rather than crashing.
  NSString* string = [NSString stringWithUTF8String:text.c_str()];
  return string ? string : @"";
}

}  // namespace

@implementation QMAppDelegate {
  NSStatusItem* _statusItem;
}

+ (QMAppDelegate*)shared {
  static QMAppDelegate* const delegate = [[QMAppDelegate alloc] init];
  return delegate;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  (void)notification;
  // Again here: AppKit may reset the appearance while it finishes launching.
  NSApp.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];

  _statusItem = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
  NSMenu* menu = [[NSMenu alloc] initWithTitle:@"Quillmark"];
  [menu addItemWithTitle:toNSString(quillmark::L("menu.quit"))
                  action:@selector(terminate:)
           keyEquivalent:@"q"];
  _statusItem.menu = menu;
  [self updateStatusText];

  quillmark::Monitor& monitor = quillmark::Monitor::shared();
  // Weak: the monitor outlives nothing it should keep alive.
  __weak QMAppDelegate* weakSelf = self;
  monitor.onTick = [weakSelf] { [weakSelf updateStatusText]; };
  monitor.start(quillmark::SettingsManager::shared().refreshInterval());
}

- (void)applicationWillTerminate:(NSNotification*)notification {
  (void)notification;
  quillmark::Monitor::shared().stop();
}

- (void)updateStatusText {
  const quillmark::Monitor& monitor = quillmark::Monitor::shared();
  const bool showNetSpeed = quillmark::SettingsManager::shared().showNetSpeed();
  _statusItem.button.title = toNSString(quillmark::statusText(monitor.cpu.value(), monitor.memory.value(),
                                                              monitor.network.value(), showNetSpeed));
}

@end
