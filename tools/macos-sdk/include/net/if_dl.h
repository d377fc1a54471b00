// Stub SDK: the link-layer socket address (family AF_LINK).
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

struct sockaddr_dl {
  unsigned char sdl_len;
  unsigned char sdl_family;
  unsigned short sdl_index;
  unsigned char sdl_type;
  unsigned char sdl_nlen;
  unsigned char sdl_alen;
  unsigned char sdl_slen;
  char sdl_data[12];
};
QM_STUB_STATIC_ASSERT(sizeof(struct sockaddr_dl) == 20, "sockaddr_dl is 20 bytes");
#define LLADDR(s) ((char*)((s)->sdl_data + (s)->sdl_nlen))
