// The reader of cascades in the program's own format, on whatever bytes: it gives a cascade that stages can be made of, or
// a Failure.
#include <sys/mman.h>
#include <unistd.h>

#include "cascade_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A file in memory.
    const int file = memfd_create("cascade", 0);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    fuzz::expectCascadeOrFailure([&] { return tools::readCascade("/proc/self/fd/" + std::to_string(file)); });
    close(file);
    return 0;
}
