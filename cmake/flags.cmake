# How everything is compiled.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

# Warnings, and single operations that round where the source says.
add_library(lumcv_flags INTERFACE)
target_compile_options(lumcv_flags INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wpedantic -Wshadow -ffp-contract=off -fno-math-errno>)

# The vectors that every build has: 16 bytes with byte shuffles, and no other arithmetic on floating point. In 32 bits a host
# may call with a stack aligned to four bytes only, so functions that keep vectors on it align it themselves. They are said here
# alone, so that a plain build compiles what the presets compile.
target_compile_options(lumcv_flags INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-mssse3 -mfpmath=sse>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(lumcv_flags INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-mstackrealign>)
endif()

add_library(lumcv_sanitize INTERFACE)
target_link_libraries(lumcv_flags INTERFACE lumcv_sanitize)
if(LUMCV_SANITIZE)
  # Pixels may lie anywhere, and where a null pointer is used, the address sanitizer stops without a test at each access.
  target_compile_options(lumcv_sanitize INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=${LUMCV_SANITIZE} -fno-sanitize=alignment,null -fno-sanitize-recover=all
    -fno-omit-frame-pointer>)
  # The checks that a sanitizer inserts make GCC take variables for uninitialised, here and in the standard library's headers.
  target_compile_options(lumcv_sanitize INTERFACE
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-uninitialized -Wno-maybe-uninitialized>)
  target_link_options(lumcv_sanitize INTERFACE -fsanitize=${LUMCV_SANITIZE})
endif()

# What counts the lines and branches that run. Only the library's own sources are compiled with it; programs that link their objects
# need the rest of it.
add_library(lumcv_coverage INTERFACE)
if(LUMCV_COVERAGE)
  target_link_options(lumcv_coverage INTERFACE --coverage)
  # Counted before anything is inlined, even where the source asks for it, so that a branch of a small function is one branch and not
  # one in each place that calls it; what is inlined afterwards brings its counters along. A choice of two values stays a branch. The
  # counters are plain additions: what threads would lose is not worth what locked ones cost.
  set(lumcv_counters --coverage -fprofile-update=single -fno-early-inlining -fno-ssa-phiopt -finline-small-functions
    -Dalways_inline=unused)
endif()

# In a sanitized build, what is around the library is checked by calls and without messages: it compiles twice as fast.
if(LUMCV_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(checks_around_the_library --param=asan-instrumentation-with-call-threshold=0 -fno-sanitize-address-use-after-scope
    -fsanitize-undefined-trap-on-error)
endif()
