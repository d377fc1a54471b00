// Stub SDK: the system-power message codes (iokit_common_msg: 0xE0000000 | code).
#pragma once
#include <stdint.h>

#define kIOMessageCanSystemSleep ((uint32_t)0xE0000270)
#define kIOMessageSystemWillSleep ((uint32_t)0xE0000280)
#define kIOMessageSystemHasPoweredOn ((uint32_t)0xE0000300)
