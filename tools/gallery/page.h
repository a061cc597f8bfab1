// The page that shows all panels at once.
#pragma once

#include <string>
#include <vector>

#include "gallery/panel.h"

namespace tools {

/// Where the page finds the small pictures that it shows; the panels themselves lie beside it.
inline constexpr char thumbnailDirectory[] = "thumbnails";

/// A panel's entry on the page.
struct Entry {
    const Panel* panel;
    LumSize size;
    double milliseconds;
    std::vector<std::string> numbers;
    std::string code;
};

struct Section {
    std::string title;
    std::vector<Entry> entries;
};

/// A page that needs nothing but the panels' pictures beside it.
std::string page(const Subject& subject, const std::vector<Section>& sections);

/// How many columns show a number of panels with the fewest gaps in the last row: `most`, or one less.
int columnsFor(std::size_t panels, int most);

} // namespace tools
