// Which library a host has found, in C++.
#include <cstdio>
#include <lumcv.h>

int main() {
    const LumLibraryVersion* version = lumcvGetLibVersion();
    std::printf("%s %s, %s\n", version->name, version->version, version->buildDate);
    return 0;
}
