#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "commands.h"
#include "failure.h"
#include "gallery/contact_sheet.h"
#include "gallery/panel.h"
#include "picture_file.h"
#include "scene.h"
#include "tones.h"

namespace tools {
namespace {

namespace files = std::filesystem;

/// A line on a terminal that tells how far the work is, and nothing in a pipe. It is wiped when the work ends.
class Progress {
  public:
    explicit Progress(std::size_t total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
    ~Progress() { wipe(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void next(const std::string& title) {
        ++done_;
        if (!shown_) return;
        wipe();
        const std::string line = std::to_string(done_) + "/" + std::to_string(total_) + "  " + title;
        std::fputs(line.c_str(), stderr);
        std::fflush(stderr);
        width_ = line.size();
    }

  private:
    void wipe() {
        if (width_ > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(width_), "");
        width_ = 0;
    }

    std::size_t total_;
    std::size_t done_ = 0;
    std::size_t width_ = 0;
    bool shown_;
};

Subject subjectOf(const std::optional<std::string>& path) {
    Subject subject;
    subject.name = path ? files::path(*path).filename().string() : "the built-in scene";
    subject.picture = path ? readPicture(*path) : builtInScene();
    subject.grey = greyOf(subject.picture);
    subject.colour = colourOf(subject.picture);
    return subject;
}

void makeDirectory(const std::string& path) {
    std::error_code error;
    files::create_directories(path, error);
    if (error) throw Failure(path + " cannot be made a directory: " + error.message());
    if (!files::is_directory(path, error)) throw Failure(path + " is not a directory");
}

} // namespace

void gallery(const GalleryOptions& options) {
    const Subject subject = subjectOf(options.picture);
    makeDirectory(options.directory);
    const auto place = [&](const std::string& name) {
        return (files::path(options.directory) / name).string();
    };

    std::vector<std::vector<Panel>> panels;
    std::size_t total = 0;
    for (const Room& room : rooms()) {
        panels.push_back(room.panels(subject));
        total += panels.back().size();
    }

    std::vector<Section> sections;
    {
        Progress progress(total);
        for (std::size_t i = 0; i < panels.size(); ++i) {
            Section section{rooms()[i].title, {}};
            for (const Panel& panel : panels[i]) {
                progress.next(panel.title);
                Exhibit exhibit = panel.draw();
                writePicture(place(panel.file + ".png"), exhibit.picture);
                section.entries.push_back({&panel, exhibit.picture.width, exhibit.picture.height,
                                           exhibit.milliseconds, std::move(exhibit.numbers)});
            }
            sections.push_back(std::move(section));
        }
    }
    writeFile(place("index.html"), contactSheet(subject, sections));
    std::printf("%zu panels and a contact sheet: %s\n", total, place("index.html").c_str());
}

} // namespace tools
