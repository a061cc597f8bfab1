#include "support/guarded_image.h"

#include <cstdlib>
#include <gtest/gtest.h>

#include "support/pages.h"

namespace support {

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
