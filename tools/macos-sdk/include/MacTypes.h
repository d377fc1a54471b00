// Stub SDK: the classic fixed-width names CoreFoundation uses.
#pragma once
#include <stdint.h>
typedef uint8_t UInt8;
typedef uint32_t UInt32;
typedef unsigned char Boolean;
