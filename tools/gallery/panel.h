// What a gallery is made of: panels, and the sections that they are in.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "gallery/subject.h"
#include "gallery/timing.h"
#include "picture.h"

namespace tools {

/// What a panel shows once it has been drawn.
struct DrawnPanel {
    Picture picture;
    /// One call of the panel's function.
    double milliseconds = 0;
    /// Further lines of the caption: numbers that came out, with what they are.
    std::vector<std::string> numbers = {};
    /// The call as it is written here.
    std::string code = {};

    /// Times a call, whose text and work TOOLS_SHOWN gives, and keeps both.
    template <class Call> void time(const std::string& function, const char* text, Call call) {
        milliseconds = fastestCall(
            function, [] {}, call);
        code = text;
    }
    /// The same where something is to be put back before each call.
    template <class Setup, class Call>
    void time(const std::string& function, Setup setup, const char* text, Call call) {
        milliseconds = fastestCall(function, setup, call);
        code = text;
    }
};

/// A call as its text, for the reader of the page, and as work.
#define TOOLS_SHOWN(...) #__VA_ARGS__, [&] { return __VA_ARGS__; }

struct Panel {
    /// Name of the picture's file, without its ending; lower-case words with hyphens.
    std::string file;
    /// What is seen, in a few words.
    std::string title;
    /// The exported function that did the work; empty where none did.
    std::string function;
    /// Its parameters, as a person reads them.
    std::string parameters;
    std::function<DrawnPanel()> draw;
    /// The panel to compare it with, by its file's name; none when that has another size.
    std::string before = "picture";
};

/// The panels of a group of families. The subject outlives them.
struct PanelSection {
    std::string title;
    std::vector<Panel> (*panels)(const Subject& subject);
};

/// All sections, in the library's own order.
const std::vector<PanelSection>& panelSections();

std::vector<Panel> framePanels(const Subject& subject);
std::vector<Panel> statsPanels(const Subject& subject);
std::vector<Panel> integralPanels(const Subject& subject);
std::vector<Panel> cascadePanels(const Subject& subject);
std::vector<Panel> filterPanels(const Subject& subject);
std::vector<Panel> fixedFilterPanels(const Subject& subject);
std::vector<Panel> distancePanels(const Subject& subject);
std::vector<Panel> fastPanels(const Subject& subject);
std::vector<Panel> houghPanels(const Subject& subject);
std::vector<Panel> segmentPanels(const Subject& subject);
std::vector<Panel> motionPanels(const Subject& subject);
std::vector<Panel> cornerPanels(const Subject& subject);
std::vector<Panel> pyramidPanels(const Subject& subject);
std::vector<Panel> geometryPanels(const Subject& subject);
std::vector<Panel> morphPanels(const Subject& subject);
std::vector<Panel> reconstructionPanels(const Subject& subject);

} // namespace tools
