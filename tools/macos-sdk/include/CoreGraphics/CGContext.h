// Stub SDK: drawing into a graphics context (state, transforms, paths, fills, strokes, clipping,
// gradients, images and the text position CoreText draws at).
#pragma once
#include <CoreGraphics/CGGradient.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

typedef struct CGContext* CGContextRef;
typedef enum CGLineCap : int32_t { kCGLineCapButt = 0, kCGLineCapRound = 1, kCGLineCapSquare = 2 } CGLineCap;
typedef enum CGLineJoin : int32_t {
  kCGLineJoinMiter = 0,
  kCGLineJoinRound = 1,
  kCGLineJoinBevel = 2
} CGLineJoin;

QM_STUB_EXTERN_C_BEGIN
void CGContextSaveGState(CGContextRef c);
void CGContextRestoreGState(CGContextRef c);
void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty);
void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy);
void CGContextBeginPath(CGContextRef c);
void CGContextMoveToPoint(CGContextRef c, CGFloat x, CGFloat y);
void CGContextAddLineToPoint(CGContextRef c, CGFloat x, CGFloat y);
void CGContextAddCurveToPoint(CGContextRef c, CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                              CGFloat x, CGFloat y);
void CGContextClosePath(CGContextRef c);
void CGContextClip(CGContextRef c);
void CGContextSetRGBFillColor(CGContextRef c, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
void CGContextSetRGBStrokeColor(CGContextRef c, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
void CGContextSetLineWidth(CGContextRef c, CGFloat width);
void CGContextSetLineCap(CGContextRef c, CGLineCap cap);
void CGContextSetLineJoin(CGContextRef c, CGLineJoin join);
void CGContextFillPath(CGContextRef c);
void CGContextStrokePath(CGContextRef c);
void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient, CGPoint startPoint, CGPoint endPoint,
                                 CGGradientDrawingOptions options);
void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image);
void CGContextSetTextMatrix(CGContextRef c, CGAffineTransform t);
void CGContextSetTextPosition(CGContextRef c, CGFloat x, CGFloat y);
// Bitmap contexts (CGBitmapContext.h in the real SDK): drawing into memory the caller owns.
CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo);
QM_STUB_EXTERN_C_END
