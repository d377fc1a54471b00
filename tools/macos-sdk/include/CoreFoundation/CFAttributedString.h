// Stub SDK: an immutable string with one set of attributes over its whole length.
#pragma once
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>

typedef const struct __CFAttributedString* CFAttributedStringRef;

QM_STUB_EXTERN_C_BEGIN
CFAttributedStringRef CFAttributedStringCreate(CFAllocatorRef alloc, CFStringRef str, CFDictionaryRef attributes);
QM_STUB_EXTERN_C_END
