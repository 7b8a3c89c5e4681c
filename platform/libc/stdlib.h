// What the product calls of the C library's <stdlib.h>, and what libc++'s headers mention. libc++ passes over every
// other name, so a call to anything else fails to compile.
#pragma once

#include <stddef.h>

typedef struct {
    int quot;
    int rem;
} div_t;
typedef struct {
    long quot;
    long rem;
} ldiv_t;
typedef struct {
    long long quot;
    long long rem;
} lldiv_t;

#if defined(__cplusplus)
extern "C" {
#endif
void *calloc(size_t count, size_t size);
void free(void *block);
void *malloc(size_t size);
int posix_memalign(void **block, size_t alignment, size_t size);
int abs(int value);
long labs(long value);
long long llabs(long long value);
div_t div(int dividend, int divisor);
ldiv_t ldiv(long dividend, long divisor);
lldiv_t lldiv(long long dividend, long long divisor);
#if defined(__cplusplus)
}
#endif
