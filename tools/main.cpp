// lumcv: the library on real pictures, from the command line.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <functional>
#include <new>
#include <stdexcept>

#include "commands.h"
#include "failure.h"
#include "lumcv.h"

namespace {

constexpr int failed = 2;

/// One line on standard error, whatever the text holds.
int report(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = ' ';
    std::fprintf(stderr, "lumcv: %s\n", text.c_str());
    return failed;
}

/// A command of the program: its name, what it says of itself, and what it does once its options are read.
CLI::App* command(CLI::App& program, const char* name, const char* description,
                  const std::function<void()>& work) {
    CLI::App* added = program.add_subcommand(name, description);
    added->callback(work);
    return added;
}

/// The options of all commands, of which one is run.
struct Options {
    tools::AbsDiffOptions absDiff;
    tools::DetectOptions detect;
    tools::InpaintOptions inpaint;
    tools::SegmentOptions segment;
    tools::TrackOptions track;
    tools::GalleryOptions gallery;
};

void addCommands(CLI::App& program, Options& options) {
    auto& [absDiff, detect, inpaint, segment, track, gallery] = options;
    command(program, "info", "Tell what library this is, what it exports, and the machine's largest cache",
            [] { tools::info(); });

    CLI::App* absDiffCommand = command(program, "absdiff", "Write the absolute difference of two pictures",
                                       [&options] { tools::absDiff(options.absDiff); });
    absDiffCommand->add_option("A", absDiff.first, "A picture: PNG, JPEG, PGM or PPM")->required();
    absDiffCommand
        ->add_option("B", absDiff.second, "Another one of the same size, grey or colour as the first")
        ->required();
    absDiffCommand
        ->add_option("-o,--output", absDiff.output, "The picture to write: .png, .jpg, .pgm or .ppm")
        ->required();

    CLI::App* detectCommand = command(program, "detect", "Find what a cascade of Haar stages knows",
                                      [&options] { tools::detect(options.detect); });
    detectCommand->add_option("PICTURE", detect.picture, "A picture: PNG, JPEG, PGM or PPM")->required();
    detectCommand
        ->add_option("-o,--output", detect.output, "The picture with boxes to write: .png, .jpg or .ppm")
        ->required();
    detectCommand->add_option("--cascade", detect.cascade, "The cascade: a JSON file")->required();

    CLI::App* inpaintCommand = command(program, "inpaint", "Repair the pixels of a picture that a mask shows",
                                       [&options] { tools::inpaint(options.inpaint); });
    inpaintCommand->add_option("PICTURE", inpaint.picture, "A picture: PNG, JPEG, PGM or PPM")->required();
    inpaintCommand
        ->add_option("MASK", inpaint.mask,
                     "A picture of the same size, bright where the other is to be repaired")
        ->required();
    inpaintCommand
        ->add_option("-o,--output", inpaint.output, "The picture to write: .png, .jpg, .pgm or .ppm")
        ->required();
    inpaintCommand->add_option("--method", inpaint.method, "front, from the hole's edge inward, or isophote")
        ->check(CLI::IsMember({"front", "isophote"}));
    inpaintCommand->add_option("--radius", inpaint.radius,
                               "Pixels around each one that it is made of, 1 to 100");

    CLI::App* segmentCommand = command(program, "segment", "Divide a picture into regions",
                                       [&options] { tools::segment(options.segment); });
    segmentCommand->add_option("PICTURE", segment.picture, "A picture: PNG, JPEG, PGM or PPM")->required();
    segmentCommand->add_option("--seeds", segment.seeds, "How many regions")->required();
    segmentCommand
        ->add_option("-o,--output", segment.output, "The picture of regions to write: .png, .jpg or .ppm")
        ->required();

    CLI::App* trackCommand = command(program, "track", "Follow points from one picture to another one",
                                     [&options] { tools::track(options.track); });
    trackCommand->add_option("A", track.first, "A picture: PNG, JPEG, PGM or PPM")->required();
    trackCommand->add_option("B", track.second, "Another one of the same size")->required();
    trackCommand
        ->add_option("-o,--output", track.output, "The picture with arrows to write: .png, .jpg or .ppm")
        ->required();

    CLI::App* galleryCommand =
        command(program, "gallery", "Run every family over a picture and write a contact sheet",
                [&options] { tools::gallery(options.gallery); });
    galleryCommand->add_option("PICTURE", gallery.picture,
                               "A picture: PNG, JPEG, PGM or PPM; without it, the built-in scene");
    galleryCommand
        ->add_option("-o,--output", gallery.directory, "The directory for the panels and index.html")
        ->required();
}

} // namespace

int main(int argc, char** argv) {
#ifdef SIGXFSZ
    // A file that grows beyond the limit of its size is a write that fails, and is told as one.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    CLI::App program("Computer-vision primitives on real pictures.", "lumcv");
    program.require_subcommand(0, 1);
    program.set_version_flag("--version", lumcvGetLibVersion()->version);
    Options options;
    addCommands(program, options);

    try {
        program.parse(argc, argv);
        if (program.get_subcommands().empty())
            return report("a command is required (lumcv --help tells them)");
    } catch (const CLI::Success& asked) {
        // --help and --version.
        program.exit(asked);
    } catch (const CLI::ParseError& error) {
        return report(std::string(error.what()) + " (lumcv --help tells the commands)");
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
