// Pages of memory, as the system gives them.
#pragma once

#include <cstddef>

namespace support {

std::size_t pageBytes();
/// Pages that can be read and written, all of 0; null when there are none left. Memory is taken as they are touched.
void* mapPages(std::size_t bytes);
/// From now on the page can be neither read nor written; false when the system refuses.
bool forbidPage(void* page);
void unmapPages(void* pages, std::size_t bytes);

} // namespace support
