// Stub SDK: run-time symbol lookup, for private system functions that have no public header.
#pragma once
#include "_qm_stub_sdk.h"

#define RTLD_DEFAULT ((void*)-2)

QM_STUB_EXTERN_C_BEGIN
void* dlsym(void* handle, const char* symbol);
QM_STUB_EXTERN_C_END
