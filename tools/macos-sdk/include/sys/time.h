// Stub SDK: <sys/time.h> as far as our code needs it (the timeval layout).
#pragma once
#include <sys/_types/_timeval.h>
