// Stub SDK: the user's preferred languages.
#pragma once
#include <CoreFoundation/CFArray.h>

QM_STUB_EXTERN_C_BEGIN
// +1: an array of CFString such as "en-GB", "de".
CFArrayRef CFLocaleCopyPreferredLanguages(void);
QM_STUB_EXTERN_C_END
