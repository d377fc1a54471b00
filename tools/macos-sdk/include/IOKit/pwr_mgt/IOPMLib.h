// Stub SDK: power-management assertions. The result maps each pid (CFNumber) to a CFArray of
// assertion dictionaries; the caller releases it.
#pragma once
#include <CoreFoundation/CFDictionary.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/IOReturn.h>

QM_STUB_EXTERN_C_BEGIN
IOReturn IOPMCopyAssertionsByProcess(CFDictionaryRef* assertionsByPID);
// System sleep and wake messages for the root power domain; a sleep waits for IOAllowPowerChange.
io_connect_t IORegisterForSystemPower(void* refcon, IONotificationPortRef* thePortRef,
                                      IOServiceInterestCallback callback, io_object_t* notifier);
IOReturn IOAllowPowerChange(io_connect_t kernelPort, intptr_t notificationID);
QM_STUB_EXTERN_C_END
