// Stub SDK: Mach absolute time.
#pragma once
#include <mach/mach_types.h>

struct mach_timebase_info {
  uint32_t numer;
  uint32_t denom;
};
typedef struct mach_timebase_info mach_timebase_info_data_t;
typedef struct mach_timebase_info* mach_timebase_info_t;

QM_STUB_EXTERN_C_BEGIN
kern_return_t mach_timebase_info(mach_timebase_info_t info);
uint64_t mach_absolute_time(void);
QM_STUB_EXTERN_C_END
