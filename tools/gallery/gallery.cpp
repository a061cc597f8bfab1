#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "codecs/codec.h"
#include "commands.h"
#include "failure.h"
#include "files/output_file.h"
#include "gallery/page.h"
#include "gallery/panel.h"
#include "gallery/subject.h"
#include "picture_file.h"
#include "progress.h"
#include "shrinking.h"
#include "terminal_text.h"

namespace tools {
namespace {

namespace files = std::filesystem;

/// Pixels along a thumbnail's longer side: those of a screen of two pixels a point, in the widest column.
constexpr int thumbnailSide = 880;

void makeDirectory(const std::string& path) {
    std::error_code error;
    files::create_directories(path, error);
    if (error) throw Failure(path + " cannot be made a directory: " + error.message());
    if (!files::is_directory(path, error)) throw Failure(path + " is not a directory");
}

/// The directory that the panels are written to.
class Destination {
  public:
    Destination(std::string directory, bool isPage) : directory_(std::move(directory)), isPage_(isPage) {
        makeDirectory(directory_);
        if (isPage_) makeDirectory(of(thumbnailDirectory));
    }

    std::string of(const std::string& name) const { return (files::path(directory_) / name).string(); }

    /// Writes a panel's picture, and a thumbnail where there is a page.
    void write(const std::string& file, const Picture& picture) const {
        writePicture(of(file + (isPage_ ? ".png" : ".pnm")), picture);
        if (!isPage_) return;
        const int side = std::max(picture.width, picture.height);
        writePicture(of(std::string(thumbnailDirectory) + "/" + file + ".jpg"),
                     shrunkBy(picture, static_cast<double>(thumbnailSide) / side));
    }

  private:
    std::string directory_;
    bool isPage_;
};

} // namespace

void gallery(const GalleryOptions& options) {
    const Subject subject = subjectOf(options.picture, options.fullSize);
    const bool isPage = !options.pnm && hasPngAndJpeg();
    const Destination place(options.directory, isPage);

    std::vector<std::vector<Panel>> panels;
    std::size_t total = 0;
    for (const PanelSection& section : panelSections()) {
        panels.push_back(section.panels(subject));
        total += panels.back().size();
    }

    std::vector<Section> sections;
    {
        Progress progress(total);
        for (std::size_t i = 0; i < panels.size(); ++i) {
            Section section{panelSections()[i].title, {}};
            for (const Panel& panel : panels[i]) {
                progress.next(panel.title);
                DrawnPanel drawn = panel.draw();
                place.write(panel.file, drawn.picture);
                section.entries.push_back({&panel, drawn.picture.size(), drawn.milliseconds,
                                           std::move(drawn.numbers), std::move(drawn.code)});
            }
            sections.push_back(std::move(section));
        }
    }
    if (!isPage) {
        std::printf("%zu panels as PNM files, without a page%s: %s\n", total,
                    hasPngAndJpeg() ? "" : ", as this build writes no picture that a browser shows",
                    forTerminal(options.directory).c_str());
        return;
    }
    const std::string index = place.of("index.html");
    named(index, [&] { writeFile(index, page(subject, sections)); });
    std::printf("%zu panels and a page: %s\n", total, forTerminal(index).c_str());
}

} // namespace tools
