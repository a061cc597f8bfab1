// The program as a user drives it: arguments in, what it prints and its exit status out.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#ifdef _WIN32
#    include "windows/run_program.h"
#else
#    include <fcntl.h>
#    include <pty.h>
#    include <spawn.h>
#    include <sys/wait.h>
#    include <unistd.h>
#endif

namespace support {

struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

/// Makes a directory whose path begins with this one and that was not there.
inline std::filesystem::path freshDirectory(const std::string& path) {
    std::random_device random;
    for (;;) {
        std::filesystem::path fresh = path + std::to_string(random());
        if (std::filesystem::create_directory(fresh)) return fresh;
    }
}

#ifdef _WIN32

inline Outcome run(const std::vector<std::string>& arguments) {
    const auto directory = freshDirectory((std::filesystem::temp_directory_path() / "lumcv-run-").string());
    Outcome outcome;
    {
        const OutputOfProgram output(directory / "output");
        const OutputOfProgram errors(directory / "errors");
        outcome.status = runProgram(LUMCV_PROGRAM, arguments, output, errors);
        // A picture, where it is asked for here.
        const bool isPicture = std::find(arguments.begin(), arguments.end(), "-") != arguments.end();
        outcome.output = isPicture ? output.bytes() : output.text();
        outcome.errors = errors.text();
    }
    std::filesystem::remove(directory);
    return outcome;
}

#else

inline std::string readToEnd(int descriptor) {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count <= 0) return text;
        text.append(block, count);
    }
}

/// Runs the program through a shell whose own commands come first: "ulimit -f 8;", "cd /tmp;".
inline Outcome runAfter(const std::string& commands, const std::vector<std::string>& arguments) {
    int outputPipe[2];
    int errorPipe[2];
    if (pipe(outputPipe) != 0 || pipe(errorPipe) != 0) return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outputPipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorPipe[1], STDERR_FILENO);
    for (const int end : {outputPipe[0], outputPipe[1], errorPipe[0], errorPipe[1]})
        posix_spawn_file_actions_addclose(&actions, end);

    std::vector<std::string> words = {"sh", "-c", commands + " exec \"$0\" \"$@\"", LUMCV_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = 0;
    const int failure = posix_spawn(&child, "/bin/sh", &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(outputPipe[1]);
    close(errorPipe[1]);
    Outcome outcome;
    if (failure == 0) {
        outcome.output = readToEnd(outputPipe[0]);
        outcome.errors = readToEnd(errorPipe[0]);
        int status = 0;
        waitpid(child, &status, 0);
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    close(outputPipe[0]);
    close(errorPipe[0]);
    return outcome;
}

inline Outcome run(const std::vector<std::string>& arguments) { return runAfter("", arguments); }

/// What the program writes to standard error when that is a terminal.
inline std::string shownOnTerminal(const std::vector<std::string>& arguments) {
    int terminal = -1;
    int programSide = -1;
    char name[256];
    if (openpty(&terminal, &programSide, name, nullptr, nullptr) != 0) return {};
    EXPECT_EQ(0, runAfter("exec 2>" + std::string(name) + ";", arguments).status);
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    std::string shown = readToEnd(terminal);
    close(programSide);
    close(terminal);
    return shown;
}

#endif

/// The program has ended with status 2 and one line on standard error that holds the text.
inline void expectRefused(const Outcome& outcome, const std::string& text) {
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("", outcome.output);
    ASSERT_FALSE(outcome.errors.empty());
    EXPECT_EQ(outcome.errors.size() - 1, outcome.errors.find('\n')) << outcome.errors;
    EXPECT_EQ(0U, outcome.errors.find("lumcv: ")) << outcome.errors;
    EXPECT_NE(std::string::npos, outcome.errors.find(text)) << outcome.errors;
}

/// A directory that goes away with the test.
class ScratchDirectory {
  public:
    ScratchDirectory()
        : path_(freshDirectory((std::filesystem::temp_directory_path() / "lumcv-test-").string())) {}
    ~ScratchDirectory() { std::filesystem::remove_all(path_); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

    /// Names of all files, at any depth.
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path_))
            if (!entry.is_directory())
                names.push_back(std::filesystem::relative(entry.path(), path_).string());
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    std::filesystem::path path_;
};

inline std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace support
