// Stub SDK: Mach return codes.
#pragma once
typedef int kern_return_t;
#define KERN_SUCCESS 0
#define KERN_INVALID_ARGUMENT 4
#define KERN_FAILURE 5
