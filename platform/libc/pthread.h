// What the product calls of <pthread.h>.
#pragma once

typedef struct _opaque_pthread_t *pthread_t;

#if defined(__cplusplus)
extern "C" {
#endif
pthread_t pthread_self(void);
#if defined(__cplusplus)
}
#endif
