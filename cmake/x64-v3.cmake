# 64-bit x86 with 32-byte vectors.
set(level_flags "-march=x86-64-v3")
set(CMAKE_C_FLAGS_INIT "${level_flags}")
set(CMAKE_CXX_FLAGS_INIT "${level_flags}")
