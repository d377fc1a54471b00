// Stub SDK: IOKit return codes (sys_iokit is 0xE0000000; the low bits name the failure).
#pragma once
#include <mach/kern_return.h>

typedef kern_return_t IOReturn;

#define kIOReturnSuccess KERN_SUCCESS
#define kIOReturnError ((IOReturn)0xE00002BC)
#define kIOReturnNoDevice ((IOReturn)0xE00002C0)
#define kIOReturnNotPrivileged ((IOReturn)0xE00002C1)
#define kIOReturnBadArgument ((IOReturn)0xE00002C2)
#define kIOReturnNotFound ((IOReturn)0xE00002F0)
