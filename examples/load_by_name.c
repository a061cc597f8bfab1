/* The library loaded while the program runs, its function found by name. The path is the one argument. */
#include <dlfcn.h>
#include <stdio.h>

#include "lumcv.h"

typedef LumStatus (*AbsDiffC)(const Lum8u*, int, Lum8u*, int, LumSize, Lum32s);

int main(int argc, char** argv) {
    void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (library == NULL) {
        fprintf(stderr, "load_by_name: %s\n", argc == 2 ? dlerror() : "give the path of liblumcv.so");
        return 2;
    }
    AbsDiffC absDiffC;
    *(void**)&absDiffC = dlsym(library, "lumiAbsDiffC_8u_C1R");

    const Lum8u row[4] = {90, 100, 110, 255};
    Lum8u distances[4];
    const LumSize size = {4, 1};
    if (absDiffC == NULL || absDiffC(row, 4, distances, 4, size, 100) != lumStatusOk) return 1;
    printf("%d %d %d %d\n", distances[0], distances[1], distances[2], distances[3]);
    return dlclose(library);
}
