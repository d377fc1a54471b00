#include "menubar/card_panel_darwin.h"

@implementation QMCardPanel

+ (QMCardPanel*)cardWithWidth:(CGFloat)width height:(CGFloat)height {
  QMCardPanel* panel = [[QMCardPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, height)
                                                      styleMask:NSWindowStyleMaskNonactivatingPanel
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
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
