// A Windows program run with arguments: what it prints, and its exit status.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>
#include <windows.h>

namespace support {

/// A file that another program may write to as its output. Goes away with its contents.
class OutputOfProgram {
  public:
    explicit OutputOfProgram(std::filesystem::path path) : path_(std::move(path)) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        handle_ = CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    ~OutputOfProgram() {
        CloseHandle(handle_);
        std::filesystem::remove(path_);
    }
    OutputOfProgram(const OutputOfProgram&) = delete;
    OutputOfProgram& operator=(const OutputOfProgram&) = delete;

    HANDLE handle() const { return handle_; }

    std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// The same as text, whose lines end as they do elsewhere.
    std::string text() const {
        std::string text = bytes();
        for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.erase(at, 1);
        return text;
    }

  private:
    std::filesystem::path path_;
    HANDLE handle_;
};

/// Its exit status, or -1 where it has not run. No argument holds a quotation mark or ends with a backslash.
inline int runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const OutputOfProgram& output, const OutputOfProgram& errors) {
    std::string line = "\"" + std::filesystem::path(program).make_preferred().string() + "\"";
    for (const std::string& argument : arguments) line += " \"" + argument + "\"";
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = output.handle();
    start.hStdError = errors.handle();
    PROCESS_INFORMATION process = {};
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process) ==
        0)
        return -1;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(status);
}

} // namespace support
