#include "entry/version.h"

#include <cstddef>

namespace lum {

#ifdef __x86_64__
#    define LUM_TARGET "x64"
#else
#    define LUM_TARGET "s8"
static_assert(offsetof(LumLibraryVersion, targetCpu) == 16 && offsetof(LumLibraryVersion, name) == 20);
static_assert(sizeof(LumLibraryVersion) == 32);
#endif

const LumLibraryVersion* getLibVersion() {
    static constexpr LumLibraryVersion version = {
        .major = 2021,
        .minor = 11,
        .majorBuild = 0,
        .build = 0xCD107B02,
        .targetCpu = LUM_TARGET,
        .name = "lumCV Sprite (" LUM_TARGET ")",
        .version = "2021.11.0 (r0xcd107b02)",
        .buildDate = "Jan 30 2024",
    };
    return &version;
}

} // namespace lum
