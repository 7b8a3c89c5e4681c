// The conversion state that libc++'s string headers name but the product never makes.
#pragma once

typedef union {
    char __mbstate8[128];
    long long _mbstateL;
} mbstate_t;
