// Stub SDK: the IOKit user-space calls Quillmark makes (service lookup, user clients, registry
// properties). Objects are Mach port names released with IOObjectRelease; "Create" calls return
// +1 CF references. IOServiceGetMatchingService consumes the matching dictionary.
#pragma once
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <IOKit/IOReturn.h>
#include <dispatch/dispatch.h>
#include <mach/mach_types.h>
#include <stddef.h>
#include <stdint.h>

#include "_qm_stub_sdk.h"

typedef mach_port_t io_object_t;
typedef io_object_t io_connect_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_registry_entry_t;
typedef io_object_t io_service_t;
typedef mach_port_t task_port_t;
typedef UInt32 IOOptionBits;
typedef char io_name_t[128];

#define IO_OBJECT_NULL ((io_object_t)0)
#define kIOServicePlane "IOService"

enum {
  kIORegistryIterateRecursively = 0x00000001,
  kIORegistryIterateParents = 0x00000002,
};

QM_STUB_EXTERN_C_BEGIN
extern const mach_port_t kIOMainPortDefault;

CFMutableDictionaryRef IOServiceMatching(const char* name);
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching);
kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t type,
                            io_connect_t* connect);
kern_return_t IOServiceClose(io_connect_t connect);
kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt);
kern_return_t IOObjectRelease(io_object_t object);
kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry, CFMutableDictionaryRef* properties,
                                                CFAllocatorRef allocator, IOOptionBits options);
CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef allocator, IOOptionBits options);
CFTypeRef IORegistryEntrySearchCFProperty(io_registry_entry_t entry, const io_name_t plane, CFStringRef key,
                                          CFAllocatorRef allocator, IOOptionBits options);
QM_STUB_EXTERN_C_END

// Notification ports: system-power messages delivered on a dispatch queue (the fan helper).
typedef struct IONotificationPort* IONotificationPortRef;
typedef void (*IOServiceInterestCallback)(void* refcon, io_service_t service, uint32_t messageType,
                                          void* messageArgument);
QM_STUB_EXTERN_C_BEGIN
void IONotificationPortSetDispatchQueue(IONotificationPortRef notify, dispatch_queue_t queue);
QM_STUB_EXTERN_C_END

QM_STUB_STATIC_ASSERT(sizeof(io_object_t) == 4, "IOKit objects are 32-bit port names");
