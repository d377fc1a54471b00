// Stub SDK: CoreFoundation base types. "Create"/"Copy" functions return +1 references the caller
// releases; "Get" functions do not transfer ownership. CFRelease(NULL) crashes.
#pragma once
#include <MacTypes.h>
#include <stddef.h>
#include <stdint.h>

#include "_qm_stub_sdk.h"

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;

typedef const void* CFTypeRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef CFTypeRef CFPropertyListRef;
typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;
static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  CFRange range = {location, length};
  return range;
}

QM_STUB_STATIC_ASSERT(sizeof(CFIndex) == 8, "CFIndex is a signed long");
QM_STUB_STATIC_ASSERT(sizeof(Boolean) == 1, "Boolean is one byte");

QM_STUB_EXTERN_C_BEGIN
extern const CFAllocatorRef kCFAllocatorDefault;
CFTypeID CFGetTypeID(CFTypeRef cf);
CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
QM_STUB_EXTERN_C_END

