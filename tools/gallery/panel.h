// What a gallery is made of: panels, and the rooms that they hang in.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "picture.h"

namespace tools {

/// The picture that all panels start from.
struct Subject {
    /// The file's name, or what the built-in scene is called.
    std::string name;
    /// Grey or colour, as it came.
    Picture picture;
    Picture grey;
    Picture colour;
};

/// What a panel shows once it has been drawn.
struct Exhibit {
    Picture picture;
    /// One call of the panel's function.
    double milliseconds = 0;
    /// Further lines of the caption: numbers that came out, with what they are.
    std::vector<std::string> numbers = {};
};

struct Panel {
    /// Name of the picture's file, without its ending; lower-case words with hyphens.
    std::string file;
    /// What is seen, in a few words.
    std::string title;
    /// The exported function that did the work; empty where none did.
    std::string function;
    /// Its parameters, as a person reads them.
    std::string parameters;
    std::function<Exhibit()> draw;
};

/// The panels of a group of families. The subject outlives them.
struct Room {
    std::string title;
    std::vector<Panel> (*panels)(const Subject& subject);
};

/// All rooms, in the library's own order.
const std::vector<Room>& rooms();

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
