// Stub SDK: CFNumber and CFBoolean.
#pragma once
#include <CoreFoundation/CFBase.h>

typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;

typedef enum CFNumberType : CFIndex {
  kCFNumberSInt64Type = 4,
  kCFNumberDoubleType = 13,
} CFNumberType;

QM_STUB_EXTERN_C_BEGIN
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);
CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType, const void* valuePtr);
// False when the conversion lost information; the value is still written.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);
QM_STUB_EXTERN_C_END
