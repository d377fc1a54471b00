// Stub SDK: the application bundle.
#pragma once
#include <CoreFoundation/CFURL.h>

typedef struct __CFBundle* CFBundleRef;

QM_STUB_EXTERN_C_BEGIN
// Not retained.
CFBundleRef CFBundleGetMainBundle(void);
// +1 or NULL.
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
QM_STUB_EXTERN_C_END
