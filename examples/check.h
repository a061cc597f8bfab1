/* A host that stops at the first call that fails, and says which one it was. */
#ifndef EXAMPLES_CHECK_H
#define EXAMPLES_CHECK_H

#include <stdio.h>
#include <stdlib.h>

#include "lumcv.h"

static inline void checkStatus(LumStatus status, const char* call) {
    if (status >= 0) return;
    fprintf(stderr, "%s: status %d\n", call, (int)status);
    exit(1);
}
#define CHECK(call) checkStatus(call, #call)

/* Memory for an object or a buffer, of any alignment. */
static inline void* memoryOf(Lum32s bytes) {
    void* memory = malloc(bytes > 0 ? (size_t)bytes : 1);
    if (memory != NULL) return memory;
    fprintf(stderr, "no memory of %d bytes\n", (int)bytes);
    exit(1);
}

#endif
