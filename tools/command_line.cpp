#include "command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <string>

#include "codecs/codec.h"
#include "commands.h"
#include "failure.h"
#include "lumcv.h"
#include "picture_file.h"

namespace tools {
namespace {

const std::string aPicture = "A picture: " + namesOfFormats() + "; - for standard input";

/// An option for the picture to write; `what` it is.
void addOutput(CLI::App* command, std::string& output, const std::string& what, bool ofColour) {
    command
        ->add_option("-o,--output", output,
                     what + ": " + writableEndings(ofColour) + "; - for standard output, as PGM or PPM")
        ->required()
        ->type_name("FILE");
}

CLI::Option* addPicture(CLI::App* command, const char* name, std::string& path, const std::string& what) {
    return command->add_option(name, path, what)->required()->type_name("");
}

class CommandLine {
  public:
    CommandLine();

    void run(int argc, char** argv);

  private:
    /// Where the options of the command that was given are told, to follow a message.
    std::string hint() const;
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

CommandLine::CommandLine() : program_("Computer-vision primitives on real pictures.", "lumcv") {
    program_.require_subcommand(0, 1);
    // A word that begins with a slash is a path on Windows too.
    program_.allow_windows_style_options(false);
    program_.set_version_flag("--version", lumcvGetLibVersion()->version);
    program_.get_formatter()->column_width(28);
    program_.footer("lumcv help COMMAND tells the options of a command.");
    addInfo();
    addAbsDiff();
    addDetect();
    addInpaint();
    addSegment();
    addTrack();
    addGallery();
    addHelp();
}

void CommandLine::run(int argc, char** argv) {
    try {
        program_.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        program_.exit(asked);
        return;
    } catch (const CLI::ParseError& error) {
        throw Failure(error.what() + hint());
    }
    if (program_.get_subcommands().empty()) throw Failure("a command is required" + hint());
}

std::string CommandLine::hint() const {
    const auto chosen = program_.get_subcommands();
    if (chosen.empty()) return " (lumcv help tells the commands)";
    return " (lumcv help " + chosen.front()->get_name() + " tells its options)";
}

/// A command of the program: its name, what it says of itself, and what it does once its options are read.
CLI::App* CommandLine::command(const char* name, const char* description, std::function<void()> work) {
    CLI::App* added = program_.add_subcommand(name, description);
    added->callback(std::move(work));
    return added;
}

void CommandLine::printHelp(const std::string& name) {
    std::string text;
    if (name.empty()) {
        text =
            program_.get_formatter()->make_help(&program_, program_.get_name(), CLI::AppFormatMode::Normal);
    } else {
        const auto named = program_.get_subcommands([&](CLI::App* app) { return app->get_name() == name; });
        if (named.empty()) throw Failure("there is no command " + name + " (lumcv help tells the commands)");
        text = named.front()->help(program_.get_name());
    }
    std::fputs(text.c_str(), stdout);
}

void CommandLine::addHelp() {
    CLI::App* help =
        command("help", "Tell the commands, or the options of one", [this] { printHelp(helpOf_); });
    help->add_option("COMMAND", helpOf_, "A command")->type_name("");
}

void CommandLine::addInfo() {
    command("info", "Tell what library this is, what it exports, and what the machine can do",
            [] { info(); });
}

void CommandLine::addAbsDiff() {
    CLI::App* added =
        command("absdiff", "Write the absolute difference of two pictures", [this] { absDiff(absDiff_); });
    addPicture(added, "A", absDiff_.first, aPicture);
    addPicture(added, "B", absDiff_.second, "Another one of the same size, grey or colour as the first");
    addOutput(added, absDiff_.output, "The picture to write", false);
}

void CommandLine::addDetect() {
    CLI::App* added =
        command("detect", "Find what a cascade of Haar stages knows", [this] { detect(detect_); });
    addPicture(added, "PICTURE", detect_.picture, aPicture);
    addOutput(added, detect_.output, "The picture with boxes to write", true);
    added
        ->add_option("--cascade", detect_.cascade,
                     "The cascade, in JSON or XML; without it, the built-in one for bright discs")
        ->type_name("FILE");
}

void CommandLine::addInpaint() {
    CLI::App* added =
        command("inpaint", "Repair the pixels of a picture that a mask shows", [this] { inpaint(inpaint_); });
    addPicture(added, "PICTURE", inpaint_.picture, aPicture);
    addPicture(added, "MASK", inpaint_.mask,
               "A picture of the same size, bright where the other is to be repaired");
    addOutput(added, inpaint_.output, "The picture to write", false);
    added->add_option("--method", inpaint_.method, "front, from the hole's edge inward, or isophote")
        ->check(CLI::IsMember({"front", "isophote"}))
        ->type_name("");
    added->add_option("--radius", inpaint_.radius, "Pixels around each one that it is made of, 1 to 100")
        ->type_name("PIXELS");
}

void CommandLine::addSegment() {
    CLI::App* added = command("segment", "Divide a picture into regions", [this] { segment(segment_); });
    addPicture(added, "PICTURE", segment_.picture, aPicture);
    added->add_option("--seeds", segment_.seeds, "How many regions")->required()->type_name("NUMBER");
    addOutput(added, segment_.output, "The picture of regions to write", true);
}

void CommandLine::addTrack() {
    CLI::App* added =
        command("track", "Follow points from one picture to another one", [this] { track(track_); });
    addPicture(added, "A", track_.first, aPicture);
    addPicture(added, "B", track_.second, "Another one of the same size");
    addOutput(added, track_.output, "The picture with arrows to write", true);
}

void CommandLine::addGallery() {
    CLI::App* added = command("gallery", "Run every family over a picture and write a page of the results",
                              [this] { gallery(gallery_); });
    added->add_option("PICTURE", gallery_.picture, aPicture + "; without it, the built-in scene")
        ->type_name("");
    added->add_option("-o,--output", gallery_.directory, "The directory for the panels and index.html")
        ->required()
        ->type_name("DIRECTORY");
    added->add_flag("--full-size", gallery_.fullSize,
                    "Work on all pixels of the picture, not on at most 2 million of them");
    added->add_flag("--pnm", gallery_.pnm, "Write the panels as PNM files, and no page");
}

} // namespace

void runCommandLine(int argc, char** argv) { CommandLine().run(argc, argv); }

} // namespace tools
