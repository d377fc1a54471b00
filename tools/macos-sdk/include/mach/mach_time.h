// Stub SDK: the ratio that turns Mach absolute time units into nanoseconds (ticks * numer / denom).
#pragma once
#include <mach/kern_return.h>
#include <stdint.h>

#include "_qm_stub_sdk.h"

struct mach_timebase_info {
  uint32_t numer;
  uint32_t denom;
};
typedef struct mach_timebase_info* mach_timebase_info_t;
typedef struct mach_timebase_info mach_timebase_info_data_t;

QM_STUB_EXTERN_C_BEGIN
kern_return_t mach_timebase_info(mach_timebase_info_t info);
QM_STUB_EXTERN_C_END
