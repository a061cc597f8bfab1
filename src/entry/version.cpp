#include "entry/version.h"

#include <cstddef>

// Which of the builds this is, for hosts that ask the loaded file: an ELF note of the name "lumcv" and type 1.
// Windows has one build only.
#ifdef __ELF__
#    ifdef __x86_64__
#        ifdef __AVX512BW__
#            define LUM_BUILD "x64-v4"
#        elif defined(__AVX2__)
#            define LUM_BUILD "x64-v3"
#        else
#            define LUM_BUILD "x64"
#        endif
#    else
#        define LUM_BUILD "s8"
#    endif
asm(".pushsection .note.lumcv, \"a\", @note\n"
    ".balign 4\n"
    ".long 6, 8, 1\n"
    ".asciz \"lumcv\"\n.balign 4\n"
    "0: .asciz \"" LUM_BUILD "\"\n.skip 8 - (. - 0b)\n"
    ".popsection");
#endif

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
