// The command line: which words ask for what.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "commands.h"

namespace tools {

class CommandLine {
  public:
    CommandLine();

    /// Reads the arguments and carries out the command. What is wrong with them is a CLI::ParseError, what the command
    /// cannot do a Failure.
    void run(int argc, char** argv);

    /// Where the options of the command that was given are told, to follow a message.
    std::string hint() const;

    /// Answers --help and --version.
    void print(const CLI::Success& asked) const;

  private:
    CLI::App* command(const char* name, const char* description, std::function<void()> work);
    void addHelp();
    void addInfo();
    void addAbsDiff();
    void addDetect();
    void addInpaint();
    void addSegment();
    void addTrack();
    void addGallery();
    void printHelp(const std::string& name);

    CLI::App program_;
    std::string helpOf_;
    AbsDiffOptions absDiff_;
    DetectOptions detect_;
    InpaintOptions inpaint_;
    SegmentOptions segment_;
    TrackOptions track_;
    GalleryOptions gallery_;
};

} // namespace tools
