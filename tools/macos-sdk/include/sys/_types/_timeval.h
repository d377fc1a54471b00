// Stub SDK: the Darwin timeval (16 bytes: 64-bit seconds, 32-bit microseconds, 4 bytes padding).
//
// glibc's own struct timeval reaches every C++ translation unit through libstdc++, with a 64-bit
// tv_usec. The check and the fake-kernel build therefore force-include this header first; it
// claims glibc's include guard so that only the Darwin layout exists.
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

#ifndef __timeval_defined
#define __timeval_defined 1
#endif
struct timeval {
  long tv_sec;
  int32_t tv_usec;
};
QM_STUB_STATIC_ASSERT(sizeof(struct timeval) == 16, "Darwin timeval is 16 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct timeval, tv_usec) == 8, "tv_usec at 8");
QM_STUB_STATIC_ASSERT(sizeof(((struct timeval*)0)->tv_usec) == 4, "tv_usec is 32-bit on Darwin");
