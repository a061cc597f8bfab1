# 32-bit x86.
set(CMAKE_C_FLAGS_INIT "-m32")
set(CMAKE_CXX_FLAGS_INIT "-m32")
set(CMAKE_ASM_FLAGS_INIT "-m32")
# Said here and not left to what the compiler lists, which names the folder only once a package has made it.
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
