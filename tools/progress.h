// How far long work is.
#pragma once

#include <cstddef>
#include <string>

namespace tools {

/// A line on a terminal's standard error that tells how far the work is, and nothing in a pipe. It is wiped when the
/// work ends.
class Progress {
  public:
    explicit Progress(std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The next of the steps begins.
    void next(const std::string& title);

  private:
    void wipe();

    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_;
    bool onLine_ = false;
};

} // namespace tools
