#include "gallery/panel.h"

namespace tools {

const std::vector<Room>& rooms() {
    static const std::vector<Room> all = {
        {"Frame", framePanels},
        {"Statistics", statsPanels},
        {"Integral images", integralPanels},
        {"Haar cascades", cascadePanels},
        {"Linear filters", filterPanels},
        {"Filters with built-in kernels", fixedFilterPanels},
        {"Distances and inpainting", distancePanels},
        {"Morphology", morphPanels},
        {"FAST corners", fastPanels},
        {"Hough lines", houghPanels},
        {"Segmentation", segmentPanels},
        {"Reconstruction and bit images", reconstructionPanels},
        {"Motion", motionPanels},
        {"Edges and corners", cornerPanels},
        {"Lens geometry", geometryPanels},
    };
    return all;
}

} // namespace tools
