# 64-bit x86 with 64-byte vectors. The compiler's own header of these vectors starts intrinsics from undefined values,
# of which it then warns; the other builds keep that warning for the same sources.
set(level_flags "-march=x86-64-v4 -Wno-uninitialized -Wno-maybe-uninitialized")
set(CMAKE_C_FLAGS_INIT "${level_flags}")
set(CMAKE_CXX_FLAGS_INIT "${level_flags}")
