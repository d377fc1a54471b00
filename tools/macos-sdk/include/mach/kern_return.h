// Stub SDK: Mach return codes.
#pragma once
typedef int kern_return_t;
#define KERN_SUCCESS 0
#define KERN_PROTECTION_FAILURE 2
#define KERN_NO_SPACE 3
#define KERN_INVALID_ARGUMENT 4
#define KERN_FAILURE 5
#define KERN_RESOURCE_SHORTAGE 6
#define KERN_INVALID_HOST 22
#define KERN_NOT_SUPPORTED 46
