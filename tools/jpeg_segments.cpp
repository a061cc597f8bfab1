#include "jpeg_segments.h"

#include <cstddef>

#include "failure.h"

namespace tools {
namespace {

constexpr unsigned endOfImage = 0xD9;
constexpr unsigned startOfScan = 0xDA;
constexpr unsigned huffmanTables = 0xC4;

/// Bytes after 0xFF that begin no segment: a stuffed 0, a filling 0xFF, and the restart markers.
bool isStuffing(unsigned marker) {
    return marker == 0x00 || marker == 0xFF || (marker >= 0xD0 && marker <= 0xD7);
}

unsigned byteAt(std::string_view bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

/// Tables one after the other: a byte of kind and number, sixteen counts of codes by their length, the codes.
void expectSoundTables(std::string_view tables) {
    constexpr std::size_t lengths = 16;
    constexpr unsigned mostCodes = 256;
    while (!tables.empty()) {
        unsigned codes = 0;
        if (tables.size() <= lengths) throw Failure("is damaged: a table of codes is cut short");
        for (std::size_t i = 1; i <= lengths; ++i) codes += byteAt(tables, i);
        if (codes > mostCodes || tables.size() < 1 + lengths + codes)
            throw Failure("is damaged: a table of codes has too many");
        tables.remove_prefix(1 + lengths + codes);
    }
}

} // namespace

void expectSoundJpeg(std::string_view bytes) {
    bool inScan = false;
    std::size_t i = 2;
    // Segment by segment: one of them may hold a whole small picture, whose end is not that of the file.
    while (i + 1 < bytes.size()) {
        const unsigned marker = byteAt(bytes, i + 1);
        if (byteAt(bytes, i) != 0xFF || isStuffing(marker)) {
            if (!inScan && byteAt(bytes, i) != 0xFF) throw Failure("is damaged: a segment is missing");
            ++i;
            continue;
        }
        if (marker == endOfImage && inScan) return;
        if (i + 3 >= bytes.size()) break;
        const std::size_t length = byteAt(bytes, i + 2) * 256 + byteAt(bytes, i + 3);
        if (length < 2) throw Failure("is damaged: a segment has no length");
        if (i + 2 + length > bytes.size()) break;
        if (marker == huffmanTables) expectSoundTables(bytes.substr(i + 4, length - 2));
        inScan = inScan || marker == startOfScan;
        i += 2 + length;
    }
    throw Failure("is cut short");
}

} // namespace tools
