// What the program can do. Each command is a function of its options; command_line.cpp reads
// the options. The lines that commands print go to standard output, or to standard error where the picture goes there.
// A command that cannot be carried out throws a Failure.
#pragma once

#include <optional>
#include <string>

namespace tools {

/// Prints the identity record of the library, where it was loaded from and what it was built for, the number of its
/// exports, this program's own revision and date, the processor's vectors and the size of the largest cache.
void info();

struct AbsDiffOptions {
    std::string first;
    std::string second;
    std::string output;
};
/// Writes the absolute difference of two pictures of one size.
void absDiff(const AbsDiffOptions& options);

struct DetectOptions {
    std::string picture;
    std::string output;
    /// None for the cascade that the program carries.
    std::optional<std::string> cascade;
};
/// Prints where a picture holds what a cascade knows and how often it does, and writes the picture with boxes around
/// it.
void detect(const DetectOptions& options);

struct InpaintOptions {
    std::string picture;
    std::string mask;
    std::string output;
    std::string method = "front";
    float radius = 5;
};
/// Writes a picture with the bright pixels of a mask repaired.
void inpaint(const InpaintOptions& options);

struct SegmentOptions {
    std::string picture;
    std::string output;
    int seeds = 0;
};
/// Divides a picture into as many regions as seeds, prints the pixels of each, and writes the regions in their mean
/// colours.
void segment(const SegmentOptions& options);

struct TrackOptions {
    std::string first;
    std::string second;
    std::string output;
};
/// Finds points of the first picture again in the second one, prints both places, and writes the second picture with an
/// arrow from each place to the other.
void track(const TrackOptions& options);

struct GalleryOptions {
    /// None for the built-in scene.
    std::optional<std::string> picture;
    std::string directory;
    /// Pictures are shrunk to 2 megapixels otherwise.
    bool fullSize = false;
    /// Panels as PNM files, without a page.
    bool pnm = false;
};
/// Runs every family over a picture, and writes a picture a panel and a page that shows them.
void gallery(const GalleryOptions& options);

} // namespace tools
