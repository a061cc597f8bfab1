#include <cstdio>

#include "commands.h"
#include "exported_names.h"
#include "lumcore.h"
#include "lumcv.h"

namespace tools {

void info() {
    const LumLibraryVersion& library = *lumcvGetLibVersion();
    std::printf("%s\n", library.name);
    std::printf("version        %s\n", library.version);
    std::printf("numbers        %d.%d.%d, revision 0x%08x\n", library.major, library.minor,
                library.majorBuild, library.build);
    std::printf("built          %s\n", library.buildDate);
    std::printf("processor      %.4s\n", library.targetCpu);
    std::printf("exports        %zu\n", exportedNames().size());

    int32_t bytes = 0;
    if (const LumStatus status = lumGetMaxCacheSizeB(&bytes); status != lumStatusOk)
        std::printf("largest cache  unknown (status %d)\n", status);
    else
        std::printf("largest cache  %d KiB\n", bytes / 1024);
}

} // namespace tools
