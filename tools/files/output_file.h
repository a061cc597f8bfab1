// Files that are written: a whole file in place, or the place as it was.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace tools {

/// A file under a temporary name beside its place, which goes away again unless it is moved there, even where a signal
/// ends the program (SIGHUP, SIGINT, SIGTERM; on Windows it then stays). There is one at a time. Failures are texts that follow the file's name.
class OutputFile {
  public:
    /// Links are followed: the file is written where they lead. A file that is replaced passes on its mode.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::string_view bytes);
    void moveToItsPlace();

  private:
    std::string target_;
    std::string path_;
    int descriptor_ = -1;
    bool moved_ = false;
};

/// A Failure when what is at the path is no file that can be replaced. Asked before long work, so that it is not done
/// in vain.
void expectReplaceable(const std::string& path);

/// Writes a whole file; its bytes go to standard output where the path is "-".
void writeFile(const std::string& path, std::string_view bytes);

/// The file as messages name it.
std::string nameOfOutput(const std::string& path);

/// Where a command's lines go: standard output, unless its picture goes there.
std::FILE* streamOfLines(const std::string& pathOfPicture);

} // namespace tools
