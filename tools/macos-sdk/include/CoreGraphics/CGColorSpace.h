// Stub SDK: colour spaces.
#pragma once
#include <CoreGraphics/CGGeometry.h>

typedef struct CGColorSpace* CGColorSpaceRef;

QM_STUB_EXTERN_C_BEGIN
CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
void CGColorSpaceRelease(CGColorSpaceRef space);
QM_STUB_EXTERN_C_END
