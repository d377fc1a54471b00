// Stub SDK: immutable paths (CoreText lays wrapped text into one).
#pragma once
#include <CoreGraphics/CGGeometry.h>

typedef const struct CGPath* CGPathRef;

QM_STUB_EXTERN_C_BEGIN
CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform* transform);
void CGPathRelease(CGPathRef path);
QM_STUB_EXTERN_C_END
