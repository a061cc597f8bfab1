#include "support/guarded_image.h"

#include <cstdlib>
#include <gtest/gtest.h>

#ifdef _WIN32
#    include <windows.h>
#else
#    include <sys/mman.h>
#    include <unistd.h>
#endif

namespace support {
namespace {

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
    void* const pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

bool forbidPage(void* page) { return mprotect(page, pageBytes(), PROT_NONE) == 0; }

void unmapPages(void* pages, std::size_t bytes) { munmap(pages, bytes); }

#endif

} // namespace

GuardedPages::GuardedPages(std::size_t bytes, Guard guard) : size_(bytes) {
    const std::size_t page = pageBytes();
    const std::size_t usable = (bytes + page - 1) / page * page;
    mappingSize_ = usable + page;
    mapping_ = static_cast<unsigned char*>(mapPages(mappingSize_));
    if (mapping_ == nullptr) std::abort();
    unsigned char* guardPage = guard == Guard::after ? mapping_ + usable : mapping_;
    if (!forbidPage(guardPage)) std::abort();
    bytes_ = guard == Guard::after ? guardPage - bytes : mapping_ + page;
}

GuardedPages::~GuardedPages() { unmapPages(mapping_, mappingSize_); }

GuardedBlock::GuardedBlock(std::size_t bytes, Guard guard, std::size_t spare)
    : pages_(bytes + spare, guard),
      start_(pages_.bytes() + (guard == Guard::before ? spare : 0)),
      size_(bytes) {
    std::memset(pages_.bytes(), pattern, pages_.size());
}

GuardedBlock::~GuardedBlock() {
    for (std::size_t i = 0; i < pages_.size(); ++i) {
        const unsigned char* byte = pages_.bytes() + i;
        const bool isSpare = byte < start_ || byte >= start_ + size_;
        if (isSpare && *byte != pattern) {
            ADD_FAILURE() << "byte " << byte - start_ << " of a block of " << size_ << " was written";
            return;
        }
    }
}

} // namespace support
