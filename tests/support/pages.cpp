#include "support/pages.h"

#ifdef _WIN32
#    include <windows.h>
#else
#    include <sys/mman.h>
#    include <unistd.h>
#endif

namespace support {

#ifdef _WIN32

std::size_t pageBytes() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return system.dwPageSize;
}

void* mapPages(std::size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

bool forbidPage(void* page) {
    DWORD former = 0;
    return VirtualProtect(page, pageBytes(), PAGE_NOACCESS, &former) != 0;
}

void unmapPages(void* pages, std::size_t /*bytes*/) { VirtualFree(pages, 0, MEM_RELEASE); }

#else

std::size_t pageBytes() { return sysconf(_SC_PAGESIZE); }

void* mapPages(std::size_t bytes) {
    void* const pages =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

bool forbidPage(void* page) { return mprotect(page, pageBytes(), PROT_NONE) == 0; }

void unmapPages(void* pages, std::size_t bytes) { munmap(pages, bytes); }

#endif

} // namespace support
