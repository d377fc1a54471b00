// Stub SDK: CGFloat (64-bit) and its limits.
#pragma once
#include <float.h>
typedef double CGFloat;
#define CGFLOAT_MAX DBL_MAX
#define CGFLOAT_MIN DBL_MIN
