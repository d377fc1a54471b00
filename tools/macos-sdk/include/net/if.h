// Stub SDK: interface flags, and the interface data record.
#pragma once
#include <net/if_var.h>

#define IFF_UP 0x1
#define IFF_BROADCAST 0x2
#define IFF_LOOPBACK 0x8
#define IFF_POINTOPOINT 0x10
#define IFF_RUNNING 0x40
