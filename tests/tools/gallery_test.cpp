#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <numeric>
#include <pty.h>

#include "codecs/codec.h"
#include "gallery/page.h"
#include "gallery/subject.h"
#include "picture_file.h"
#include "program.h"
#include "scene.h"
#include "tones.h"

using namespace support;
using tools::Picture;

namespace {

const std::string ending = tools::hasPngAndJpeg() ? ".png" : ".pnm";

/// A small picture with something in every pixel.
Picture pattern(int width, int height, int channels) {
    Picture picture(width, height, channels);
    for (std::size_t i = 0; i < picture.elements.size(); ++i)
        picture.elements[i] = static_cast<Lum8u>(i * 7 + i / 5 * 31 + i * i);
    return picture;
}

class Gallery : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string file(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return scratch / name;
    }
    Picture panel(const std::string& name) { return tools::readPicture(scratch / ("g/" + name + ending)); }
};

/// Counts what is wrong with the page, and writes it into the document.
const char* const watcher = R"(<script>
let errors = 0;
addEventListener('error', () => { ++errors; }, true);
addEventListener('load', async () => {
  const images = [...document.images];
  images.forEach(image => { image.loading = 'eager'; });
  for (let i = 0; i < 300 && images.some(image => !image.complete); ++i)
    await new Promise(done => setTimeout(done, 100));
  const missing = images.filter(image => !image.complete || image.naturalWidth === 0).length;
  let empty = 0;
  for (const grid of document.querySelectorAll('.panels')) {
    const filled = new Map();
    for (const panel of grid.children) {
      const box = panel.getBoundingClientRect();
      const row = Math.round(box.top);
      filled.set(row, (filled.get(row) || 0) + box.width);
    }
    for (const width of filled.values()) if (width < 0.4 * grid.clientWidth) ++empty;
  }
  const root = document.documentElement;
  document.dispatchEvent(new KeyboardEvent('keydown', { key: 'b' }));
  const compares = getComputedStyle(document.querySelector('.before')).opacity === '1';
  document.dispatchEvent(new KeyboardEvent('keyup', { key: 'b' }));
  const ends = getComputedStyle(document.querySelector('.before')).opacity === '0';
  const links = [...document.querySelectorAll('nav a')].every(link => document.querySelector(link.getAttribute('href')));
  root.setAttribute('data-seen', [images.length > 100, 'missing', missing, 'errors', errors, 'empty', empty, 'beyond',
    Math.max(0, root.scrollWidth - innerWidth), compares, ends, links].join(' '));
});
</script>)";

std::string outputOf(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    const std::string text = readToEnd(fileno(pipe));
    pclose(pipe);
    return text;
}

/// The gallery of the built-in scene, made once.
class SceneGallery : public testing::Test {
  protected:
    static inline std::unique_ptr<ScratchDirectory> scratch;
    static inline std::unique_ptr<Outcome> outcome;

    static void SetUpTestSuite() {
        scratch = std::make_unique<ScratchDirectory>();
        outcome = std::make_unique<Outcome>(run({"gallery", "-o", *scratch / "g"}));
    }
    static void TearDownTestSuite() {
        scratch.reset();
        outcome.reset();
    }
    Picture panel(const std::string& name) { return tools::readPicture(*scratch / ("g/" + name + ending)); }
};

} // namespace

TEST_F(SceneGallery, HasThePanelsAndTellsHowMany) {
    ASSERT_EQ(0, outcome->status) << outcome->errors;
    EXPECT_EQ("", outcome->errors) << "a pipe is no terminal";
    EXPECT_EQ(tools::builtInScene(), panel("picture"));
    std::size_t panels = 0;
    for (const std::string& name : scratch->files()) {
        if (name.find(ending) == std::string::npos) continue;
        ++panels;
        EXPECT_GT(tools::readPicture(*scratch / name).width, 0);
    }
    EXPECT_NE(std::string::npos, outcome->output.find(std::to_string(panels) + " panels")) << outcome->output;
    const bool saysSo = outcome->output.find("without a page") != std::string::npos;
    EXPECT_EQ(!tools::hasPngAndJpeg(), saysSo) << outcome->output;
}

TEST_F(SceneGallery, PageNeedsNothingFromElsewhere) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build writes no page";
    const std::string page = bytesOf(*scratch / "g/index.html");
    EXPECT_EQ(std::string::npos, page.find("http"));
    for (const std::string& name : scratch->files()) {
        const std::string shown = name.substr(2);
        const bool isThumbnail = shown.find(".jpg") != std::string::npos;
        if (shown == "index.html") continue;
        EXPECT_NE(std::string::npos, page.find((isThumbnail ? "src=\"" : "href=\"") + shown + "\"")) << shown;
        if (isThumbnail) {
            const Picture thumbnail = tools::readPicture(*scratch / name);
            EXPECT_LE(std::max(thumbnail.width, thumbnail.height), 880) << shown;
        }
    }
    EXPECT_NE(std::string::npos, page.find("loading=\"lazy\""));
    EXPECT_NE(std::string::npos,
              page.find("<summary>The call</summary><pre>lumiAbsDiff_8u_C3R(first, firstStep, "));
}

TEST_F(SceneGallery, NormsOfColourStepsDifferVisibly) {
    const auto meanOf = [&](const std::string& name) {
        const Picture shown = tools::greyOf(panel(name));
        return std::accumulate(shown.elements.begin(), shown.elements.end(), 0.0) /
               static_cast<double>(shown.elements.size());
    };
    const double largest = meanOf("colour-gradient-largest");
    const double root = meanOf("colour-gradient-root");
    const double mean = meanOf("colour-gradient-mean");
    EXPECT_GT(largest, root + 2);
    EXPECT_GT(root, mean + 2);
}

TEST_F(SceneGallery, DerivativesAreNotCutOff) {
    for (const char* name : {"laplacian", "cross-derivative", "row-stage"}) {
        const Picture shown = panel(name);
        const auto ends = std::count_if(shown.elements.begin(), shown.elements.end(),
                                        [](Lum8u tone) { return tone == 0 || tone == 255; });
        EXPECT_GE(ends, 1) << name;
        EXPECT_LT(ends, static_cast<long>(shown.elements.size() / 1000)) << name;
    }
}

TEST_F(SceneGallery, PageShowsAllPicturesInABrowserAtThreeWidths) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build writes no page";
    if (std::system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "there is no chromium";
    std::string page = bytesOf(*scratch / "g/index.html");
    page.insert(page.find("<head>") + 6, watcher);
    writeBytes(*scratch / "g/watched.html", page);
    for (const std::string width : {"500", "1000", "1600"}) {
        const std::string seen = outputOf(
            "chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
            "--disable-background-networking --disable-component-update --disable-sync --user-data-dir=" +
            (*scratch / ("profile" + width)) + " --window-size=" + width +
            ",1200 --virtual-time-budget=60000 --dump-dom file://" + (*scratch / "g/watched.html") +
            " 2>/dev/null");
        EXPECT_NE(std::string::npos,
                  seen.find("data-seen=\"true missing 0 errors 0 empty 0 beyond 0 true true true\""))
            << width << ": " << seen.substr(seen.find("data-seen"), 100);
    }
}

TEST_F(Gallery, PnmPanelsHaveTheSamePixelsAsThePage) {
    const std::string picture = file("p.ppm", pattern(40, 30, 3));
    const Outcome outcome = run({"gallery", picture, "--pnm", "-o", scratch / "pnm"});
    ASSERT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_NE(std::string::npos, outcome.output.find("as PNM files, without a page")) << outcome.output;
    ASSERT_EQ(0, run({"gallery", picture, "-o", scratch / "g"}).status);
    std::size_t panels = 0;
    for (const auto& entry : std::filesystem::directory_iterator(scratch / "pnm")) {
        EXPECT_EQ(".pnm", entry.path().extension());
        EXPECT_EQ(tools::readPicture(entry.path().string()), panel(entry.path().stem().string()))
            << entry.path();
        ++panels;
    }
    EXPECT_GT(panels, 50U);
}

TEST_F(Gallery, ShowsWhatAMoveChanges) {
    const Picture picture = pattern(40, 30, 1);
    ASSERT_EQ(0, run({"gallery", file("p.pgm", picture), "-o", scratch / "g"}).status);
    const Picture moved = tools::shifted(picture, 5, 3);
    EXPECT_EQ(picture, panel("picture"));
    EXPECT_EQ(moved, panel("picture-moved"));
    const Picture difference = panel("absolute-difference");
    for (std::size_t i = 0; i < picture.elements.size(); ++i)
        ASSERT_EQ(std::abs(picture.elements[i] - moved.elements[i]), difference.elements[i]);
}

TEST_F(Gallery, TakesPicturesOfAnyShape) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 50}, {50, 1}, {2, 3}, {33, 17}})
        for (const int channels : {1, 3}) {
            const Outcome outcome =
                run({"gallery", file("p.pnm", pattern(width, height, channels)), "-o", scratch / "g"});
            EXPECT_EQ(0, outcome.status) << width << " x " << height << ": " << outcome.errors;
        }
}

TEST_F(Gallery, LargePicturesAreShrunkUnlessAsked) {
    const std::string large = file("p.ppm", pattern(6000, 500, 3));
    const tools::Subject subject = tools::subjectOf(large, false);
    EXPECT_LE(subject.picture.width * subject.picture.height, 2000000);
    EXPECT_GT(subject.picture.width * subject.picture.height, 1980000);
    EXPECT_NEAR(12, static_cast<double>(subject.picture.width) / subject.picture.height, 0.1);
    EXPECT_EQ(6000, subject.sizeOfFile.width);
    EXPECT_EQ(6000, tools::subjectOf(large, true).picture.width);
    const std::string page = tools::page(subject, {});
    EXPECT_NE(std::string::npos, page.find("shrunk from 6000 x 500"))
        << page.substr(page.find("<header"), 300);
}

TEST_F(Gallery, SaysWhereNothingIsFound) {
    // Text is the only thing that is bright in the panels of a black picture.
    ASSERT_EQ(0, run({"gallery", file("p.pgm", Picture(300, 200)), "-o", scratch / "g"}).status);
    for (const char* name :
         {"bright-discs", "lines", "segments", "corners-of-circle-3", "strongest-corners", "optical-flow"}) {
        const Picture shown = panel(name);
        EXPECT_TRUE(std::count(shown.elements.begin(), shown.elements.end(), 255) > 100) << name;
    }
}

TEST_F(Gallery, PageHoldsNamesAsText) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build writes no page";
    ASSERT_EQ(0, run({"gallery", file("a<b>&\"c\"\x9B.pnm", pattern(5, 5, 1)), "-o", scratch / "g"}).status);
    const std::string page = bytesOf(scratch / "g/index.html");
    EXPECT_EQ(std::string::npos, page.find("a<b>"));
    EXPECT_NE(std::string::npos, page.find("a&lt;b&gt;&amp;&quot;c&quot;?.pnm"));
}

TEST_F(Gallery, RowsAreFilled) {
    for (const int most : {3, 4})
        for (std::size_t panels = 2; panels < 40; ++panels) {
            const int columns = tools::columnsFor(panels, most);
            EXPECT_TRUE(columns >= 1 && columns <= most);
            const int rest = static_cast<int>(panels) % columns;
            EXPECT_TRUE(rest == 0 || 2 * rest >= columns) << panels << " in " << columns;
        }
    EXPECT_EQ(1, tools::columnsFor(1, 4));
    EXPECT_EQ(3, tools::columnsFor(5, 4));
    EXPECT_EQ(4, tools::columnsFor(7, 4));
    EXPECT_EQ(2, tools::columnsFor(7, 3));
}

TEST_F(Gallery, TellsItsProgressOnATerminal) {
    int terminal = -1;
    int programSide = -1;
    char name[256];
    ASSERT_EQ(0, openpty(&terminal, &programSide, name, nullptr, nullptr));
    const Outcome outcome = runBehind("exec 2>" + std::string(name) + ";",
                                      {"gallery", file("p.pgm", pattern(30, 30, 1)), "-o", scratch / "g"});
    EXPECT_EQ(0, outcome.status);
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    const std::string shown = readToEnd(terminal);
    close(programSide);
    close(terminal);
    EXPECT_NE(std::string::npos, shown.find("1/")) << shown;
    EXPECT_NE(std::string::npos, shown.find("The picture moved")) << shown;
    EXPECT_EQ('\r', shown.back()) << "the line is wiped at the end";
}

TEST_F(Gallery, RefusesADirectoryThatCannotBeMade) {
    const std::string a = file("a.pgm", pattern(8, 8, 1));
    expectRefused(run({"gallery", "-o", a + "/gallery"}), "cannot be made a directory");
    expectRefused(run({"gallery", "-o", a}), a);
    EXPECT_EQ((std::vector<std::string>{"a.pgm"}), scratch.files());
}

TEST_F(Gallery, MakesNoDirectoryForAFileThatIsNoPicture) {
    writeBytes(scratch / "text.pnm", "These are words.\n");
    for (const char* name : {"missing.pnm", "text.pnm"})
        expectRefused(run({"gallery", scratch / name, "-o", scratch / "g"}), name);
    EXPECT_FALSE(std::filesystem::exists(scratch / "g"));
}
