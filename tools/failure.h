// What ends a command: one line for the person who gave it.
#pragma once

#include <stdexcept>
#include <string>

#include "lumcv.h"

namespace tools {

/// The command cannot be carried out; the text says why, in one line.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Ends the command when a function of the library refuses what the program has handed to it.
inline void expectOk(LumStatus status, const std::string& function) {
    if (status < 0) throw Failure(function + " returned status " + std::to_string(status));
}

/// Does the work, and puts the name of its file in front of what is wrong with it.
template <class Work> auto named(const std::string& file, Work work) {
    try {
        return work();
    } catch (const Failure& failure) {
        throw Failure(file + " " + failure.what());
    }
}

} // namespace tools
