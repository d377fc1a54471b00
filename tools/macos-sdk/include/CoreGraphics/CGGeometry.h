// Stub SDK: points, sizes, rectangles and affine transforms.
#pragma once
#include <CoreGraphics/CGBase.h>

#include "_qm_stub_sdk.h"

typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} CGPoint;
typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;
typedef struct CGAffineTransform {
  CGFloat a, b, c, d, tx, ty;
} CGAffineTransform;
QM_STUB_STATIC_ASSERT(sizeof(CGRect) == 32, "CGRect is four CGFloat");
QM_STUB_STATIC_ASSERT(sizeof(CGAffineTransform) == 48, "CGAffineTransform is six CGFloat");

static inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
  CGPoint p = {x, y};
  return p;
}
static inline CGSize CGSizeMake(CGFloat width, CGFloat height) {
  CGSize s = {width, height};
  return s;
}
static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  CGRect r = {{x, y}, {width, height}};
  return r;
}

QM_STUB_EXTERN_C_BEGIN
CGFloat CGRectGetMinX(CGRect rect);
CGFloat CGRectGetMidX(CGRect rect);
CGFloat CGRectGetMaxX(CGRect rect);
CGFloat CGRectGetMinY(CGRect rect);
CGFloat CGRectGetMaxY(CGRect rect);
extern const CGAffineTransform CGAffineTransformIdentity;
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
QM_STUB_EXTERN_C_END
