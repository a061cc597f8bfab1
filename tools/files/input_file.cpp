#include "files/input_file.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace tools {
namespace {

constexpr std::size_t blockLength = 65536;

#ifdef _WIN32
constexpr int readingFlags = O_RDONLY | O_BINARY;
#else
// A pipe without a writer would be waited for.
constexpr int readingFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
#endif

/// A file that is open for reading, closed again unless it is standard input.
class Source {
  public:
    explicit Source(const std::string& path) {
        if (path == "-") {
            if (isatty(STDIN_FILENO) != 0) throw Failure("is a terminal");
            return;
        }
        descriptor_ = open(path.c_str(), readingFlags);
        struct stat status {};
        if (descriptor_ < 0) {
            const int error = errno;
            // Windows opens no directory.
            if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) throw Failure("is a directory");
            throw Failure(std::string("cannot be opened: ") + std::strerror(error));
        }
        if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
            close(descriptor_);
            throw Failure(S_ISDIR(status.st_mode)
                              ? "is a directory"
                              : "is no ordinary file; what comes out of a pipe is read as -");
        }
        length_ = static_cast<std::uint64_t>(status.st_size);
    }
    ~Source() {
        if (descriptor_ != STDIN_FILENO) close(descriptor_);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// As the directory says; 0 for standard input.
    std::uint64_t length() const { return length_; }

    /// Appends some bytes, and tells whether there were any.
    bool appendTo(std::string& bytes) const {
        const std::size_t before = bytes.size();
        bytes.resize(before + blockLength);
        ssize_t count = 0;
        do count = read(descriptor_, bytes.data() + before, blockLength);
        while (count < 0 && errno == EINTR);
        if (count < 0) throw Failure(std::string("cannot be read: ") + std::strerror(errno));
        bytes.resize(before + static_cast<std::size_t>(count));
        return count > 0;
    }

  private:
    int descriptor_ = STDIN_FILENO;
    std::uint64_t length_ = 0;
};

[[noreturn]] void refuseLarge(std::size_t largest) {
    throw Failure("is larger than " + std::to_string(largest >> 20) + " MiB");
}

} // namespace

std::string readFile(const std::string& path, std::size_t largest,
                     const std::function<void(std::string_view)>& look) {
    const Source source(path);
    if (source.length() > largest) refuseLarge(largest);
    std::string bytes;
    while (bytes.size() < blockLength && source.appendTo(bytes)) {
    }
    if (bytes.empty()) throw Failure("is empty");
    if (look) look(bytes);
    bytes.reserve(static_cast<std::size_t>(source.length()) + blockLength);
    while (source.appendTo(bytes))
        if (bytes.size() > largest) refuseLarge(largest);
    return bytes;
}

std::string nameOfInput(const std::string& path) { return path == "-" ? "standard input" : path; }

} // namespace tools
