// Stub SDK: the umbrella Mach header.
#pragma once
#include <mach/host_info.h>
#include <mach/kern_return.h>
#include <mach/mach_host.h>
#include <mach/mach_init.h>
#include <mach/mach_types.h>
#include <mach/processor_info.h>
#include <mach/vm_map.h>
#include <mach/vm_statistics.h>
