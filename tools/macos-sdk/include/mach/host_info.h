// Stub SDK: host_statistics flavours and the CPU load record.
#pragma once
#include <mach/mach_types.h>
#include <mach/machine.h>

#define HOST_CPU_LOAD_INFO 3
#define HOST_VM_INFO64 4

struct host_cpu_load_info {
  natural_t cpu_ticks[CPU_STATE_MAX];
};
typedef struct host_cpu_load_info host_cpu_load_info_data_t;
#define HOST_CPU_LOAD_INFO_COUNT \
  ((mach_msg_type_number_t)(sizeof(host_cpu_load_info_data_t) / sizeof(integer_t)))

QM_STUB_STATIC_ASSERT(sizeof(host_cpu_load_info_data_t) == 16, "host_cpu_load_info is 16 bytes");
