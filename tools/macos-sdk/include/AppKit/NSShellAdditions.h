// Stub SDK: what the menu-bar shell calls on the classes declared in AppKit.h (part of AppKit.h).
// Declared as categories so that the classes' declarations stay in one place.
#pragma once

#ifdef __OBJC__
#pragma clang assume_nonnull begin

@interface NSResponder (QMStubShell)
- (BOOL)acceptsFirstResponder;
- (void)mouseDown:(NSEvent*)event;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseDragged:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
- (void)rightMouseDown:(NSEvent*)event;
- (void)rightMouseUp:(NSEvent*)event;
- (void)scrollWheel:(NSEvent*)event;
- (void)keyDown:(NSEvent*)event;
- (void)cancelOperation:(nullable id)sender;
- (void)doCommandBySelector:(SEL)selector;
- (void)interpretKeyEvents:(NSArray<NSEvent*>*)eventArray;
- (BOOL)performKeyEquivalent:(NSEvent*)event;
@end

// Mouse tracking: hover and leaving the view.
typedef NS_OPTIONS(NSUInteger, NSTrackingAreaOptions) {
  NSTrackingMouseEnteredAndExited = 0x01,
  NSTrackingMouseMoved = 0x02,
  NSTrackingActiveAlways = 0x80,
  NSTrackingInVisibleRect = 0x200,
};

@class NSDictionary;

@interface NSTrackingArea : NSObject
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(nullable id)owner
                    userInfo:(nullable NSDictionary*)userInfo;
@end

// The clipboard, as plain text.
typedef NSString* NSPasteboardType;
extern NSPasteboardType const NSPasteboardTypeString;

@interface NSPasteboard : NSObject
@property(class, readonly, strong) NSPasteboard* generalPasteboard;
- (NSInteger)clearContents;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)dataType;
- (nullable NSString*)stringForType:(NSPasteboardType)dataType;
@end

@interface NSWorkspace (QMStubShell)
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
@end

@interface NSApplication (QMStubShell)
@property(nullable, readonly, strong) NSEvent* currentEvent;
@end

typedef NS_ENUM(NSUInteger, NSCellImagePosition) {
  NSImageOnly = 1,
  NSImageLeading = 7,
};

typedef NS_ENUM(NSUInteger, NSImageScaling) {
  NSImageScaleProportionallyDown = 0,
};

typedef NSInteger NSControlStateValue;
static const NSControlStateValue NSControlStateValueOff = 0;
static const NSControlStateValue NSControlStateValueOn = 1;

@interface NSView (QMStubShell)
- (instancetype)initWithFrame:(NSRect)frameRect;
- (void)drawRect:(NSRect)dirtyRect;
@property(readonly, getter=isFlipped) BOOL flipped;
@property BOOL needsDisplay;
@property NSRect frame;
@property NSRect bounds;
@property(nullable, readonly) NSWindow* window;
@property(nullable, copy) NSString* toolTip;
- (NSPoint)convertPoint:(NSPoint)point fromView:(nullable NSView*)view;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView*)view;
- (void)updateTrackingAreas;
- (void)addTrackingArea:(NSTrackingArea*)trackingArea;
- (void)removeTrackingArea:(NSTrackingArea*)trackingArea;
@end

@interface NSControl (QMStubShell)
@property(nullable, weak) id target;
@property(nullable) SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
@end

@interface NSButton (QMStubShell)
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@property NSImageScaling imageScaling;
@end

@interface NSStatusItem (QMStubShell)
@property CGFloat length;
@property(getter=isVisible) BOOL visible;
@end

@interface NSMenuItem (QMStubShell)
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode;
@property(nullable, strong) id representedObject;
@property NSInteger tag;
@property NSControlStateValue state;
@property(nullable, weak) id target;
@property(getter=isEnabled) BOOL enabled;
@property(nullable, strong) NSMenu* submenu;
@end

@interface NSMenu (QMStubShell)
- (void)addItem:(NSMenuItem*)newItem;
@property BOOL autoenablesItems;
- (BOOL)popUpMenuPositioningItem:(nullable NSMenuItem*)item
                      atLocation:(NSPoint)location
                          inView:(nullable NSView*)view;
@end

#pragma clang assume_nonnull end
#endif
