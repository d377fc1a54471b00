// Stub SDK: the Mach scalar types (arm64, LP64).
#pragma once
#include <mach/kern_return.h>
#include <stdint.h>

#include "_qm_stub_sdk.h"

typedef unsigned int natural_t;
typedef int integer_t;
typedef natural_t mach_port_name_t;
typedef unsigned int mach_port_t;
typedef mach_port_t host_t;
typedef mach_port_t vm_map_t;
typedef mach_port_t ipc_space_t;
typedef natural_t mach_msg_type_number_t;
typedef uintptr_t vm_offset_t;
typedef uintptr_t vm_size_t;
typedef vm_offset_t vm_address_t;
typedef integer_t host_flavor_t;
typedef integer_t* host_info_t;
typedef integer_t* host_info64_t;
typedef int processor_flavor_t;
typedef integer_t* processor_info_array_t;

QM_STUB_STATIC_ASSERT(sizeof(natural_t) == 4 && sizeof(integer_t) == 4, "Mach words are 32-bit");
QM_STUB_STATIC_ASSERT(sizeof(mach_port_t) == 4, "ports are 32-bit names");
QM_STUB_STATIC_ASSERT(sizeof(vm_size_t) == 8, "vm_size_t is pointer-sized");
