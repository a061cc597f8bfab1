#include <cstdio>

#include "codecs/codec.h"
#include "commands.h"
#include "exported_names.h"
#include "lumcore.h"
#include "lumcv.h"
#include "machine.h"
#include "terminal_text.h"

namespace tools {

void info() {
    const LumLibraryVersion& library = *lumcvGetLibVersion();
    std::printf("%s\n", library.name);
    std::printf("version        %s\n", library.version);
    std::printf("numbers        %d.%d.%d, revision 0x%08x\n", library.major, library.minor,
                library.majorBuild, library.build);
    std::printf("dated          %s\n", library.buildDate);
    std::printf("target         %.4s\n", library.targetCpu);
    std::printf("exports        %zu\n", exportedNames().size());
    std::printf("library        %s\n", forTerminal(fileOfLibrary()).c_str());
    std::printf("built for      %s\n", buildOfLibrary().c_str());
    std::printf("program        revision %s\n", ownBuild().c_str());
    std::printf("pictures       %s\n", namesOfFormats().c_str());
    std::printf("processor      %s\n", vectorLevelOfProcessor().c_str());

    int32_t bytes = 0;
    if (const LumStatus status = lumGetMaxCacheSizeB(&bytes); status != lumStatusOk)
        std::printf("largest cache  unknown (status %d)\n", status);
    else
        std::printf("largest cache  %d KiB\n", bytes / 1024);
}

} // namespace tools
