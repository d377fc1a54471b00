// Stub SDK: gradients from colour components (four per stop in an RGB space).
#pragma once
#include <CoreGraphics/CGColorSpace.h>
#include <stddef.h>
#include <stdint.h>

typedef struct CGGradient* CGGradientRef;
// Options and enumerations are fixed-type enums as in the SDK, so C++ needs a cast to combine them.
typedef enum CGGradientDrawingOptions : uint32_t {
  kCGGradientDrawsBeforeStartLocation = 1,
  kCGGradientDrawsAfterEndLocation = 2,
} CGGradientDrawingOptions;

QM_STUB_EXTERN_C_BEGIN
CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count);
void CGGradientRelease(CGGradientRef gradient);
QM_STUB_EXTERN_C_END
