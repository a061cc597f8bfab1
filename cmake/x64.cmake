# 64-bit x86 with the same vectors.
set(CMAKE_C_FLAGS_INIT "-mssse3")
set(CMAKE_CXX_FLAGS_INIT "-mssse3")
