// Stub SDK: host_processor_info flavours and the per-processor load record.
#pragma once
#include <mach/mach_types.h>
#include <mach/machine.h>

#define PROCESSOR_CPU_LOAD_INFO 2

struct processor_cpu_load_info {
  unsigned int cpu_ticks[CPU_STATE_MAX];
};
typedef struct processor_cpu_load_info processor_cpu_load_info_data_t;

QM_STUB_STATIC_ASSERT(sizeof(processor_cpu_load_info_data_t) == 16, "processor_cpu_load_info is 16 bytes");
