#include "support/guarded_image.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace support {

GuardedPages::GuardedPages(std::size_t bytes, Guard guard) : size_(bytes) {
    const std::size_t page = sysconf(_SC_PAGESIZE);
    const std::size_t usable = (bytes + page - 1) / page * page;
    mappingSize_ = usable + page;
    void* mapping = mmap(nullptr, mappingSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) std::abort();
    mapping_ = static_cast<unsigned char*>(mapping);
    unsigned char* guardPage = guard == Guard::after ? mapping_ + usable : mapping_;
    if (mprotect(guardPage, page, PROT_NONE) != 0) std::abort();
    bytes_ = guard == Guard::after ? guardPage - bytes : mapping_ + page;
}

GuardedPages::~GuardedPages() { munmap(mapping_, mappingSize_); }

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
