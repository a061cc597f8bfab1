#include "files/output_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace tools {
namespace {

namespace files = std::filesystem;

[[noreturn]] void refuse(const std::string& reason) { throw Failure("cannot be written: " + reason); }
[[noreturn]] void refuseFor(int error) { refuse(std::strerror(error)); }

#ifdef _WIN32

constexpr int newFile = O_WRONLY | O_CREAT | O_EXCL | O_BINARY;
constexpr int writableDirectory = W_OK;

// A file that is open cannot be removed there, so one that is not finished stays when the program is ended.
class HeldSignals {
  public:
    HeldSignals() {}
};
void beginUnfinished(const std::string& /*path*/) {}
void endUnfinished() {}

// A new file has the rights of its directory.
void copyRights(const std::string& /*target*/, int /*descriptor*/) {}

#else

constexpr int newFile = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
constexpr int writableDirectory = W_OK | X_OK;

constexpr std::array endingSignals = {SIGHUP, SIGINT, SIGTERM};

/// The file that a signal's handler removes; empty when there is none.
std::array<char, 4096> unfinished{};

void removeUnfinished(int signal) {
    if (unfinished[0] != '\0') unlink(unfinished.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Holds those signals back as long as it lives, so that the handler sees no change half made.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : endingSignals) sigaddset(&held, signal);
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    ~HeldSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t before_{};
};

/// Those of the signals that the program was not started to ignore get the handler.
void installHandler() {
    for (const int signal : endingSignals) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL) continue;
        action.sa_handler = removeUnfinished;
        sigaction(signal, &action, nullptr);
    }
}

void beginUnfinished(const std::string& path) {
    installHandler();
    if (path.size() < unfinished.size()) std::strcpy(unfinished.data(), path.c_str());
}
void endUnfinished() { unfinished[0] = '\0'; }

/// A file that is there already gives its owner and its mode to the new one.
void copyRights(const std::string& target, int descriptor) {
    struct stat status {};
    if (stat(target.c_str(), &status) != 0) return;
    // Only root may give files away.
    if (fchown(descriptor, status.st_uid, status.st_gid) != 0 && errno != EPERM) refuseFor(errno);
    if (fchmod(descriptor, status.st_mode & 07777U) != 0) refuseFor(errno);
}

#endif

/// Where the links of a path lead, whether or not there is a file.
std::string followed(const std::string& path) {
    constexpr int mostLinks = 40;
    files::path place = path;
    std::error_code error;
    for (int i = 0; files::is_symlink(files::symlink_status(place, error)); ++i) {
        if (i == mostLinks) refuseFor(ELOOP);
        const files::path next = files::read_symlink(place, error);
        if (error) refuse(error.message());
        place = place.parent_path() / next;
    }
    return place.string();
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) refuseFor(errno);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace

OutputFile::OutputFile(const std::string& path) : target_(followed(path)) {
    expectReplaceable(target_);
    // A program that was killed may have left its file, and have had the same number. The name is short: that of the
    // target may be as long as names can be.
    constexpr int mostNames = 1000;
    const files::path directory = files::path(target_).parent_path();
    const HeldSignals held;
    for (int i = 0; i < mostNames && descriptor_ < 0; ++i) {
        const std::string name = ".lumcv-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".part";
        path_ = (directory / name).string();
        descriptor_ = open(path_.c_str(), newFile, 0666);
        if (descriptor_ < 0 && errno != EEXIST) break;
    }
    if (descriptor_ < 0) refuseFor(errno);
    beginUnfinished(path_);
}

OutputFile::~OutputFile() {
    const HeldSignals held;
    endUnfinished();
    if (descriptor_ >= 0) close(descriptor_);
    if (!moved_) unlink(path_.c_str());
}

void OutputFile::write(std::string_view bytes) { writeAll(descriptor_, bytes); }

void OutputFile::moveToItsPlace() {
    copyRights(target_, descriptor_);
    const HeldSignals held;
    const int closed = close(descriptor_);
    descriptor_ = -1;
    if (closed != 0) refuseFor(errno);
    std::error_code error;
    files::rename(path_, target_, error);
    if (error) refuse(error.message());
    endUnfinished();
    moved_ = true;
}

void expectReplaceable(const std::string& path) {
    const std::string place = followed(path);
    struct stat status {};
    if (stat(place.c_str(), &status) != 0) {
        if (errno != ENOENT) refuseFor(errno);
        const files::path directory = files::path(place).parent_path();
        if (access(directory.empty() ? "." : directory.string().c_str(), writableDirectory) != 0)
            refuseFor(errno);
        return;
    }
    if (S_ISDIR(status.st_mode)) refuse("it is a directory");
    if (!S_ISREG(status.st_mode)) refuse("it is there already, and is no ordinary file");
    if (access(place.c_str(), W_OK) != 0) refuseFor(errno);
}

void writeFile(const std::string& path, std::string_view bytes) {
    if (path == "-") return writeAll(STDOUT_FILENO, bytes);
    OutputFile file(path);
    file.write(bytes);
    file.moveToItsPlace();
}

std::string nameOfOutput(const std::string& path) { return path == "-" ? "standard output" : path; }

std::FILE* streamOfLines(const std::string& pathOfPicture) { return pathOfPicture == "-" ? stderr : stdout; }

} // namespace tools
