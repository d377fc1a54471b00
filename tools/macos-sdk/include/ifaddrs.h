// Stub SDK: the interface list. Exactly one AF_LINK entry per interface carries ifa_data (an
// if_data); address entries share the name and flags and have ifa_data NULL.
#pragma once
#include <sys/socket.h>

#include "_qm_stub_sdk.h"

struct ifaddrs {
  struct ifaddrs* ifa_next;
  char* ifa_name;
  unsigned int ifa_flags;
  struct sockaddr* ifa_addr;
  struct sockaddr* ifa_netmask;
  struct sockaddr* ifa_dstaddr;
  void* ifa_data;
};
QM_STUB_STATIC_ASSERT(sizeof(struct ifaddrs) == 56, "ifaddrs is 56 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct ifaddrs, ifa_flags) == 16, "ifa_flags at 16");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct ifaddrs, ifa_data) == 48, "ifa_data at 48");

QM_STUB_EXTERN_C_BEGIN
int getifaddrs(struct ifaddrs** ifap);
void freeifaddrs(struct ifaddrs* ifp);
QM_STUB_EXTERN_C_END
