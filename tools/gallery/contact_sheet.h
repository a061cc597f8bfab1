// The page that shows all panels at once.
#pragma once

#include <string>
#include <vector>

#include "gallery/panel.h"

namespace tools {

/// A panel's entry on the page.
struct Entry {
    const Panel* panel;
    int width;
    int height;
    double milliseconds;
    std::vector<std::string> numbers;
};

struct Section {
    std::string title;
    std::vector<Entry> entries;
};

/// A page that needs nothing but the panels' pictures beside it.
std::string contactSheet(const Subject& subject, const std::vector<Section>& sections);

} // namespace tools
