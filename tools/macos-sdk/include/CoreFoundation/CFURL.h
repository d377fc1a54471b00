// Stub SDK: file URLs.
#pragma once
#include <CoreFoundation/CFBase.h>

typedef const struct __CFURL* CFURLRef;

QM_STUB_EXTERN_C_BEGIN
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex maxBufLen);
QM_STUB_EXTERN_C_END
