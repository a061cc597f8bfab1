// This program's own answer to the library's question for the size of the largest cache: the companion's, or none
// at all while a row wants to see the stores that bypass the cache.
#include <dlfcn.h>

#include "lumcore.h"
#include "rows.h"

namespace {
bool bypassing = false;
}

__attribute__((visibility("default"))) LumStatus lumGetMaxCacheSizeB(int32_t* bytes) {
    using Query = LumStatus (*)(int32_t*);
    static const auto companion = reinterpret_cast<Query>(dlsym(RTLD_NEXT, "lumGetMaxCacheSizeB"));
    if (!bypassing) return companion(bytes);
    *bytes = 0;
    return lumStatusOk;
}

namespace bench {

Setup withStreamingStores(Setup setup) {
    return [setup] {
        const std::function<void()> work = setup();
        return [work] {
            bypassing = true;
            work();
            bypassing = false;
        };
    };
}

} // namespace bench
