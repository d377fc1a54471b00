// Stub SDK: absolute time (seconds since 2001-01-01 UTC, not monotonic).
#pragma once
#include <CoreFoundation/CFBase.h>

typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;

QM_STUB_EXTERN_C_BEGIN
CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
QM_STUB_EXTERN_C_END
