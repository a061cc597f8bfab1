// lumcv: the library on real pictures, from the command line.
#include <csignal>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "command_line.h"
#include "failure.h"
#include "terminal_text.h"

#ifdef _WIN32
#    include <fcntl.h>
#    include <io.h>
#endif

namespace {

constexpr int failed = 2;

/// One line on standard error, whatever the text holds.
int report(const std::string& text) {
    std::fprintf(stderr, "lumcv: %s\n", tools::forTerminal(text).c_str());
    return failed;
}

} // namespace

// What is thrown before there is a command line, or while a message is made, ends the program.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
#ifdef _WIN32
    // Pictures may come in and go out there.
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#else
    // A file that grows beyond the limit of its size is a write that fails, and is told as one.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    try {
        tools::runCommandLine(argc, argv);
    } catch (const tools::Failure& failure) {
        return report(failure.what());
    } catch (const std::bad_alloc&) {
        return report("there is not enough memory for this picture");
    } catch (const std::length_error&) {
        return report("there is not enough memory for this picture");
    } catch (const std::exception& error) {
        return report(error.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) return report("standard output cannot be written");
    return 0;
}
