/* The library loaded while a Windows program runs, one function found by name and once more by its ordinal. The path of
 * lumcv.dll is the one argument. */
#include <stdio.h>
#include <windows.h>

#include "lumcv.h"

typedef LumStatus (*AbsDiffC)(const Lum8u*, int, Lum8u*, int, LumSize, Lum32s);

/* The ordinal of lumiAbsDiffC_8u_C1R, as lumcv.def lists it. */
enum { absDiffCOrdinal = 4 };

int main(int argc, char** argv) {
    /* A changed path of search: lumcore.dll lies beside lumcv.dll, not beside this program. */
    HMODULE library = argc == 2 ? LoadLibraryExA(argv[1], NULL, LOAD_WITH_ALTERED_SEARCH_PATH) : NULL;
    if (library == NULL) {
        fprintf(stderr, "windows_host: give the whole path of lumcv.dll, with backslashes\n");
        return 2;
    }
    AbsDiffC byName = (AbsDiffC)(INT_PTR)GetProcAddress(library, "lumiAbsDiffC_8u_C1R");
    AbsDiffC byOrdinal = (AbsDiffC)(INT_PTR)GetProcAddress(library, MAKEINTRESOURCEA(absDiffCOrdinal));
    if (byName == NULL || byName != byOrdinal) return 1;

    const Lum8u row[4] = {90, 100, 110, 255};
    Lum8u distances[4];
    const LumSize size = {4, 1};
    if (byOrdinal(row, 4, distances, 4, size, 100) != lumStatusOk) return 1;
    printf("%d %d %d %d\n", distances[0], distances[1], distances[2], distances[3]);
    return FreeLibrary(library) ? 0 : 1;
}
