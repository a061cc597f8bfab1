#include "digest/digest.h"

namespace digest {
namespace {

/// The label of the processor class and the name that holds it are the build's own.
void version(Digest& digest, const Case&) {
    const LumLibraryVersion* version = lumcvGetLibVersion();
    digest.add(version == lumcvGetLibVersion());
    digest.add(version->major);
    digest.add(version->minor);
    digest.add(version->majorBuild);
    digest.add(version->build);
    for (const char* c = version->version; *c != 0; ++c) digest.add(*c);
    for (const char* c = version->buildDate; *c != 0; ++c) digest.add(*c);
}

const RowFile file("version", [] { row("lumcvGetLibVersion", version); });

} // namespace
} // namespace digest
