// A copy of src/menubar/card_panel_darwin.mm whose window is created with the initializer's last
// two arguments swapped: Objective-C keywords are part of the selector, so on a Mac this is a
// message no window answers, and the first click on the status item would crash. The check must
// refuse it.
// expect: declares the selector 'initWithContentRect:styleMask:defer:backing:'
#include "menubar/card_panel_darwin.h"

@implementation QMCardPanel

+ (QMCardPanel*)cardWithWidth:(CGFloat)width height:(CGFloat)height {
#ifdef QM_NEGATIVE_FAULT
  QMCardPanel* panel = [[QMCardPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, height)
                                                      styleMask:NSWindowStyleMaskNonactivatingPanel
                                                          defer:NO
                                                        backing:NSBackingStoreBuffered];
#else
  QMCardPanel* panel = [[QMCardPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, height)
                                                      styleMask:NSWindowStyleMaskNonactivatingPanel
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
#endif
  panel.opaque = NO;
  panel.backgroundColor = NSColor.clearColor;
  panel.hasShadow = YES;
  panel.level = NSPopUpMenuWindowLevel;
  panel.collectionBehavior = NSWindowCollectionBehaviorTransient | NSWindowCollectionBehaviorIgnoresCycle;
  // Owned by whoever holds it, as ARC expects; AppKit must not release it a second time on close.
  panel.releasedWhenClosed = NO;
  panel.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
  panel.acceptsMouseMovedEvents = YES;
  [panel setContentSize:NSMakeSize(width, height)];
  return panel;
}

// A borderless panel refuses key status unless told otherwise; text fields need it.
- (BOOL)canBecomeKeyWindow {
  return YES;
}

- (void)cancelOperation:(id)sender {
  (void)sender;
  if (self.onCancel) self.onCancel();
}

@end
