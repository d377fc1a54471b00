// Stub SDK: the user's preferred languages, current locale and its time pattern.
#pragma once
#include <CoreFoundation/CFArray.h>

typedef const struct __CFLocale* CFLocaleRef;

QM_STUB_EXTERN_C_BEGIN
// +1: the user's current locale (region and formats, not the interface language).
CFLocaleRef CFLocaleCopyCurrent(void);
// +1: the locale's date pattern (Unicode pattern letters) for a skeleton such as "jms".
CFStringRef CFDateFormatterCreateDateFormatFromTemplate(CFAllocatorRef allocator, CFStringRef tmplate,
                                                        CFOptionFlags options, CFLocaleRef locale);
// +1: an array of CFString such as "en-GB", "de".
CFArrayRef CFLocaleCopyPreferredLanguages(void);
// +1: the user's current locale.
CFLocaleRef CFLocaleCopyCurrent(void);
QM_STUB_EXTERN_C_END
