# 64-bit x86 with 64-byte vectors.
set(CMAKE_C_FLAGS_INIT "-march=x86-64-v4")
set(CMAKE_CXX_FLAGS_INIT "-march=x86-64-v4")
