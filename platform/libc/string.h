// What the product calls of the C library's <string.h>, and what libc++'s headers mention.
#pragma once

#include <stddef.h>

#if defined(__cplusplus)
extern "C" {
#endif
void *memchr(const void *block, int byte, size_t size);
int memcmp(const void *left, const void *right, size_t size);
void *memcpy(void *target, const void *source, size_t size);
void *memmove(void *target, const void *source, size_t size);
void *memset(void *target, int byte, size_t size);
char *strchr(const char *text, int character);
int strcmp(const char *left, const char *right);
char *strdup(const char *text);
size_t strlen(const char *text);
char *strpbrk(const char *text, const char *characters);
char *strrchr(const char *text, int character);
char *strstr(const char *text, const char *part);
#if defined(__cplusplus)
}
#endif
