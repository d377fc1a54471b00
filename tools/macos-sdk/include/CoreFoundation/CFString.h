// Stub SDK: CFString basics. Lengths are in UTF-16 units.
#pragma once
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFLocale.h>

typedef UInt32 CFStringEncoding;
#define kCFStringEncodingUTF8 ((CFStringEncoding)0x08000100)
typedef CFOptionFlags CFStringCompareFlags;
enum {
  kCFCompareCaseInsensitive = 1,
  kCFCompareLocalized = 32,
};

QM_STUB_EXTERN_C_BEGIN
CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef alloc, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
const char* CFStringGetCStringPtr(CFStringRef theString, CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef theString);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringFindWithOptionsAndLocale(CFStringRef theString, CFStringRef stringToFind, CFRange rangeToSearch,
                                         CFStringCompareFlags searchOptions, CFLocaleRef locale, CFRange* result);
QM_STUB_EXTERN_C_END
