# What the fuzzers see: 64 bits, clang, and a library that counts which of its code runs. The memory of every call ends at unreadable
# pages, which find accesses outside of it without a sanitizer's cost: that is several times the time to compile the library. To have
# the sanitizers as well, for runs of hours: -DLUMCV_SANITIZE=address,undefined,fuzzer-no-link
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_FLAGS_INIT "-O1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_INIT "-O1 -DNDEBUG")
set(CMAKE_BUILD_TYPE Fuzz CACHE STRING "Kind of build")
set(LUMCV_SANITIZE "fuzzer-no-link" CACHE STRING "Sanitizers for everything that is built, as in -fsanitize=")
