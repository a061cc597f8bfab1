#include "gallery/panel.h"

namespace tools {

const std::vector<PanelSection>& panelSections() {
    static const std::vector<PanelSection> all = {
        {"Frame", framePanels},
        {"Statistics", statsPanels},
        {"Integral images", integralPanels},
        {"Haar cascades", cascadePanels},
        {"Linear filters", filterPanels},
        {"Filters with built-in kernels", fixedFilterPanels},
        {"Morphology", morphPanels},
        {"Reconstruction and bit images", reconstructionPanels},
        {"Edges and corners", cornerPanels},
        {"FAST corners", fastPanels},
        {"Hough lines", houghPanels},
        {"Pyramids", pyramidPanels},
        {"Motion", motionPanels},
        {"Distances and inpainting", distancePanels},
        {"Segmentation", segmentPanels},
        {"Lens geometry", geometryPanels},
    };
    return all;
}

} // namespace tools
