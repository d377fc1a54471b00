// Stub SDK: CFDictionary lookups (the IO registry hands its properties out as dictionaries) and
// immutable dictionaries created with the CF-type callbacks (keys and values retained).
#pragma once
#include <CoreFoundation/CFBase.h>

typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

typedef void (*CFDictionaryApplierFunction)(const void* key, const void* value, void* context);
// Only their addresses are passed; the stub leaves the layouts out.
typedef struct CFDictionaryKeyCallBacks CFDictionaryKeyCallBacks;
typedef struct CFDictionaryValueCallBacks CFDictionaryValueCallBacks;

QM_STUB_EXTERN_C_BEGIN
CFTypeID CFDictionaryGetTypeID(void);
CFIndex CFDictionaryGetCount(CFDictionaryRef theDict);
// Not retained for the caller; NULL when the key is absent.
const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key);
void CFDictionaryApplyFunction(CFDictionaryRef theDict, CFDictionaryApplierFunction applier, void* context);
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values, CFIndex numValues,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);
QM_STUB_EXTERN_C_END
