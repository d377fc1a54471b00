// Stub SDK: windows, panels and screens (part of AppKit.h).
#pragma once

#ifdef __OBJC__
#pragma clang assume_nonnull begin

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
  NSWindowStyleMaskBorderless = 0,
  NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};

typedef NS_ENUM(NSUInteger, NSBackingStoreType) {
  NSBackingStoreBuffered = 2,
};

typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
  NSWindowCollectionBehaviorTransient = 1 << 3,
  NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
};

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSPopUpMenuWindowLevel = 101;

@class NSView;
@class NSWindow;

@interface NSScreen : NSObject
@property(class, nullable, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@end

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowDidResignKey:(NSNotification*)notification;
@end

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property(getter=isOpaque) BOOL opaque;
@property(null_resettable, copy) NSColor* backgroundColor;
@property BOOL hasShadow;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property BOOL acceptsMouseMovedEvents;
@property(nullable, strong) NSAppearance* appearance;
@property(nullable, strong) __kindof NSView* contentView;
@property(nullable, weak) id<NSWindowDelegate> delegate;
@property(readonly) NSRect frame;
@property(nullable, readonly, strong) NSScreen* screen;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) CGFloat backingScaleFactor;
@property(nullable, readonly, weak) NSResponder* firstResponder;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)setFrameOrigin:(NSPoint)point;
- (void)setContentSize:(NSSize)size;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)close;
@end

@interface NSPanel : NSWindow
@end

#pragma clang assume_nonnull end
#endif
