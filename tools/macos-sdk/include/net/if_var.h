// Stub SDK: the per-interface counters carried by the AF_LINK entries of getifaddrs. Packed to 4
// bytes; the byte counters are 32-bit and wrap at 4 GiB.
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

struct timeval32 {
  int32_t tv_sec;
  int32_t tv_usec;
};

#pragma pack(push, 4)
struct if_data {
  unsigned char ifi_type;
  unsigned char ifi_typelen;
  unsigned char ifi_physical;
  unsigned char ifi_addrlen;
  unsigned char ifi_hdrlen;
  unsigned char ifi_recvquota;
  unsigned char ifi_xmitquota;
  unsigned char ifi_unused1;
  uint32_t ifi_mtu;
  uint32_t ifi_metric;
  uint32_t ifi_baudrate;
  uint32_t ifi_ipackets;
  uint32_t ifi_ierrors;
  uint32_t ifi_opackets;
  uint32_t ifi_oerrors;
  uint32_t ifi_collisions;
  uint32_t ifi_ibytes;
  uint32_t ifi_obytes;
  uint32_t ifi_imcasts;
  uint32_t ifi_omcasts;
  uint32_t ifi_iqdrops;
  uint32_t ifi_noproto;
  uint32_t ifi_recvtiming;
  uint32_t ifi_xmittiming;
  struct timeval32 ifi_lastchange;
  uint32_t ifi_unused2;
  uint32_t ifi_hwassist;
  uint32_t ifi_reserved1;
  uint32_t ifi_reserved2;
};
#pragma pack(pop)

QM_STUB_STATIC_ASSERT(sizeof(struct timeval32) == 8, "timeval32 is 8 bytes");
QM_STUB_STATIC_ASSERT(sizeof(struct if_data) == 96, "if_data is 96 bytes");
QM_STUB_STATIC_ASSERT(__alignof__(struct if_data) == 4, "if_data is 4-aligned");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct if_data, ifi_ibytes) == 40, "ifi_ibytes at 40");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct if_data, ifi_obytes) == 44, "ifi_obytes at 44");
QM_STUB_STATIC_ASSERT(sizeof(((struct if_data*)0)->ifi_ibytes) == 4, "byte counters are 32-bit");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct if_data, ifi_lastchange) == 72, "ifi_lastchange at 72");
