// Stub SDK: the task's own port.
#pragma once
#include <mach/mach_types.h>

QM_STUB_EXTERN_C_BEGIN
extern mach_port_t mach_task_self_;
mach_port_t mach_host_self(void);
kern_return_t mach_port_deallocate(ipc_space_t task, mach_port_name_t name);
QM_STUB_EXTERN_C_END
#define mach_task_self() mach_task_self_
