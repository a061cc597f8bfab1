#include "machine.h"

namespace tools {
namespace {

#include "build_stamp.inc"

} // namespace

std::string vectorLevelOfProcessor() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512cd"))
        return "x86-64-v4 (vectors of 64 bytes)";
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2"))
        return "x86-64-v3 (vectors of 32 bytes)";
    if (__builtin_cpu_supports("sse4.2")) return "x86-64-v2 (vectors of 16 bytes)";
    return "x86-64 (vectors of 16 bytes)";
}

std::string ownBuild() { return std::string(buildRevision) + ", " + buildDate; }

} // namespace tools
