// The types of the C library's <time.h> that libc++'s headers mention. The product asks the C library for no time.
#pragma once

#include <stddef.h>

typedef long time_t;
typedef unsigned long clock_t;
struct timespec {
    time_t tv_sec;
    long tv_nsec;
};
