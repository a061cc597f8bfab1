// This program's own answer to the library's question for the size of the largest cache: the companion's, or none
// at all while a row wants to see the streaming stores.
#include <dlfcn.h>

#include "lumcore.h"
#include "rows.h"

namespace {
bool streaming = false;
}

__attribute__((visibility("default"))) LumStatus lumGetMaxCacheSizeB(int32_t* bytes) {
    using Query = LumStatus (*)(int32_t*);
    static const auto companion = reinterpret_cast<Query>(dlsym(RTLD_NEXT, "lumGetMaxCacheSizeB"));
    if (!streaming) return companion(bytes);
    *bytes = 0;
    return lumStatusOk;
}

namespace bench {

Setup withStreamingStores(Setup setup) {
    return [setup] {
        const std::function<void()> work = setup();
        return [work] {
            streaming = true;
            work();
            streaming = false;
        };
    };
}

} // namespace bench
