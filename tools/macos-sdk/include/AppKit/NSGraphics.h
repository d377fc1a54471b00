// Stub SDK: colours, paths, images and the current graphics context (part of AppKit.h).
#pragma once
#include <CoreGraphics/CGContext.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* blackColor;
@property(class, strong, readonly) NSColor* clearColor;
- (void)setStroke;
@end

typedef NS_ENUM(NSUInteger, NSLineCapStyle) {
  NSLineCapStyleButt = 0,
  NSLineCapStyleRound = 1,
  NSLineCapStyleSquare = 2,
};

typedef NS_ENUM(NSUInteger, NSLineJoinStyle) {
  NSLineJoinStyleMiter = 0,
  NSLineJoinStyleRound = 1,
  NSLineJoinStyleBevel = 2,
};

@interface NSBezierPath : NSObject
+ (NSBezierPath*)bezierPath;
- (void)moveToPoint:(NSPoint)point;
- (void)lineToPoint:(NSPoint)point;
- (void)stroke;
@property CGFloat lineWidth;
@property NSLineCapStyle lineCapStyle;
@property NSLineJoinStyle lineJoinStyle;
@end

@class NSDictionary;
@class NSGraphicsContext;

@interface NSImage : NSObject
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
           drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
// Methods, not a property: the property's name is a C++ keyword.
- (void)setTemplate:(BOOL)isTemplate;
- (BOOL)isTemplate;
@property(nullable, copy) NSString* accessibilityDescription;
@property NSSize size;
// The hints dictionary is NSDictionary<NSImageHintKey, id>* in the real SDK; callers pass nil.
- (nullable CGImageRef)CGImageForProposedRect:(nullable NSRect*)proposedDestRect
                                      context:(nullable NSGraphicsContext*)referenceContext
                                        hints:(nullable NSDictionary*)hints;
@end

@interface NSGraphicsContext : NSObject
@property(class, nullable, strong) NSGraphicsContext* currentContext;
@property(readonly) CGContextRef CGContext;
@end

#pragma clang assume_nonnull end
#endif
