#include "app/macos/app_delegate_darwin.h"

#include <dispatch/dispatch.h>
#include <signal.h>

#include <memory>

#include "app/macos/menu_bar_shell_darwin.h"
#include "app/services/app_services.h"

@implementation QMAppDelegate {
  std::unique_ptr<quillmark::AppServices> _services;
  std::unique_ptr<quillmark::MenuBarShell> _shell;
  dispatch_source_t _terminationSignals[2];
}

+ (QMAppDelegate*)shared {
  static QMAppDelegate* const delegate = [[QMAppDelegate alloc] init];
  return delegate;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  (void)notification;
  // Again here: AppKit may reset the appearance while it finishes launching.
  NSApp.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
  _services = std::make_unique<quillmark::AppServices>();
  _shell = std::make_unique<quillmark::MenuBarShell>(*_services);
  _shell->controller().setup();
  _services->fanController().startIfEnabled();
  [self terminateOnSignals];
}

// SIGTERM (logout, `kill`) and SIGINT (Ctrl-C in a terminal) take the same way out as the Quit
// item, so paused applications are resumed and the fans released on every exit we can see.
- (void)terminateOnSignals {
  const int signals[2] = {SIGTERM, SIGINT};
  for (int i = 0; i < 2; ++i) {
    // The default action would end the process before the source could see the signal.
    signal(signals[i], SIG_IGN);
    dispatch_source_t source = dispatch_source_create(
        DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(signals[i]), 0, dispatch_get_main_queue());
    dispatch_source_set_event_handler(source, ^{
      [NSApp terminate:nil];
    });
    dispatch_resume(source);  // sources start suspended
    _terminationSignals[i] = source;
  }
}

- (void)applicationWillTerminate:(NSNotification*)notification {
  (void)notification;
  if (_services) _services->willTerminate();
  _shell.reset();
  _services.reset();
}

@end
