// Stub SDK: input events (part of AppKit.h; include that, not this file).
#pragma once

#ifdef __OBJC__
#pragma clang assume_nonnull begin

typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeLeftMouseDown = 1,
  NSEventTypeLeftMouseUp = 2,
  NSEventTypeRightMouseDown = 3,
  NSEventTypeRightMouseUp = 4,
  NSEventTypeMouseMoved = 5,
  NSEventTypeKeyDown = 10,
};

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
  NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
  NSEventMaskRightMouseUp = 1ULL << NSEventTypeRightMouseUp,
};

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
  NSEventModifierFlagShift = 1 << 17,
  NSEventModifierFlagControl = 1 << 18,
  NSEventModifierFlagOption = 1 << 19,
  NSEventModifierFlagCommand = 1 << 20,
};

@class NSWindow;

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) NSPoint locationInWindow;
@property(readonly) NSInteger clickCount;
@property(readonly) CGFloat scrollingDeltaX;
@property(readonly) CGFloat scrollingDeltaY;
@property(readonly) BOOL hasPreciseScrollingDeltas;
@property(nullable, readonly, copy) NSString* charactersIgnoringModifiers;
@property(nullable, readonly, weak) NSWindow* window;
@end

#pragma clang assume_nonnull end
#endif
