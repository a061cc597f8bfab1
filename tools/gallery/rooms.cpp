#include "gallery/panel.h"

namespace tools {

const std::vector<Room>& rooms() {
    static const std::vector<Room> all = {
        {"Frame", framePanels},
        {"Haar cascades", cascadePanels},
    };
    return all;
}

} // namespace tools
