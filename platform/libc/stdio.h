// What the product calls of the C library's <stdio.h>, and what libc++'s headers mention.
#pragma once

#include <stddef.h>

#define EOF (-1)

#if defined(__cplusplus)
extern "C" {
#endif
int remove(const char *path);
int snprintf(char *target, size_t size, const char *format, ...) __attribute__((format(printf, 3, 4)));
#if defined(__cplusplus)
}
#endif
