#include "progress.h"

#include <cstdio>
#include <unistd.h>

namespace tools {

Progress::Progress(std::size_t total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() { wipe(); }

void Progress::next(const std::string& title) {
    ++done_;
    if (!shown_) return;
    wipe();
    std::fprintf(stderr, "%zu/%zu  %s", done_, total_, title.c_str());
    std::fflush(stderr);
    onLine_ = true;
}

void Progress::wipe() {
    // To the line's start, and nothing after it.
    if (onLine_) std::fputs("\r\x1B[K\r", stderr);
    onLine_ = false;
}

} // namespace tools
