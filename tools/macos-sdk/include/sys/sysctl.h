// Stub SDK: sysctl by name. Returns 0, or -1 with errno (ENOENT unknown name, ENOMEM buffer too
// small); a NULL oldp asks for the size.
#pragma once
#include <stddef.h>
#include <sys/_types/_timeval.h>

#include "_qm_stub_sdk.h"

QM_STUB_EXTERN_C_BEGIN
int sysctlbyname(const char* name, void* oldp, size_t* oldlenp, void* newp, size_t newlen);
QM_STUB_EXTERN_C_END
