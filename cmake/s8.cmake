# 32-bit x86, 16-byte vectors with byte shuffles, no x87 arithmetic. A host may call with a stack aligned to four
# bytes only, so functions that keep vectors on it align it themselves.
set(CMAKE_C_FLAGS_INIT "-m32 -mssse3 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-m32 -mssse3 -mfpmath=sse -mstackrealign")
set(CMAKE_ASM_FLAGS_INIT "-m32")
# Said here and not left to what the compiler lists, which names the folder only once a package has made it.
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
