// Stub SDK: releasing kernel-allocated memory.
#pragma once
#include <mach/mach_types.h>

QM_STUB_EXTERN_C_BEGIN
kern_return_t vm_deallocate(vm_map_t target_task, vm_address_t address, vm_size_t size);
QM_STUB_EXTERN_C_END
