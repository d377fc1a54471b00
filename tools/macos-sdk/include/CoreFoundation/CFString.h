// Stub SDK: CFString basics. Lengths are in UTF-16 units.
#pragma once
#include <CoreFoundation/CFBase.h>

typedef UInt32 CFStringEncoding;
#define kCFStringEncodingUTF8 ((CFStringEncoding)0x08000100)

QM_STUB_EXTERN_C_BEGIN
CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef alloc, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
const char* CFStringGetCStringPtr(CFStringRef theString, CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef theString);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
QM_STUB_EXTERN_C_END
