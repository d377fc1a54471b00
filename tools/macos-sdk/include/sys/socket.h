// Stub SDK: the Darwin socket address (with sa_len and an 8-bit family, unlike Linux).
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

typedef uint8_t sa_family_t;
struct sockaddr {
  uint8_t sa_len;
  sa_family_t sa_family;
  char sa_data[14];
};
QM_STUB_STATIC_ASSERT(sizeof(struct sockaddr) == 16, "sockaddr is 16 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct sockaddr, sa_family) == 1, "sa_family at 1");

#define AF_INET 2
#define AF_LINK 18
