// Stub SDK: libproc. proc_listpids returns BYTES (a NULL buffer asks for an estimate);
// proc_pidinfo the bytes copied, 0 on error; proc_name the name's length, 0 on failure;
// proc_pidpath the path's length, 0 on failure (the buffer must hold PROC_PIDPATHINFO_MAXSIZE).
#pragma once
#include <stdint.h>
#include <sys/proc_info.h>

#include "_qm_stub_sdk.h"

QM_STUB_EXTERN_C_BEGIN
int proc_listpids(uint32_t type, uint32_t typeinfo, void* buffer, int buffersize);
int proc_pidinfo(int pid, int flavor, uint64_t arg, void* buffer, int buffersize);
int proc_name(int pid, void* buffer, uint32_t buffersize);
int proc_pidpath(int pid, void* buffer, uint32_t buffersize);
QM_STUB_EXTERN_C_END
