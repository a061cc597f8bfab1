// Tiles equal the whole: a picture that is cut into tiles, each with the flags of its inner sides, gives the bytes of one
// call on the whole.
#include <fnmatch.h>
#include <random>
#include <set>

#include "library/contract/calls.h"
#include "library/contract/checks.h"
#include "library/contract/rows.h"

using namespace contract;

namespace {

/// Exports whose tiles may differ from the whole, as their references and docs/tiles.md tell.
const std::vector<const char*> mayDiffer = {
    // Hysteresis follows an edge through the whole region.
    "lumiCannyBorder_8u_C1R",
    // The means of derivatives have the kind of the border on every side.
    "lumiEigenValsVecsBorder_*",
    "lumiMinEigenValBorder_*",
    // So has the second of two operators, without _L.
    "lumiMorphOpenBorder_*",
    "lumiMorphCloseBorder_*",
    "lumiMorphTophatBorder_*",
    "lumiMorphBlackhatBorder_*",
    // Groups of eight pixels from the start of a row round otherwise than the rest of it.
    "lumiFilterRowBorderPipeline_16s_*",
    "lumiFilterRowBorderPipeline_8u16s_*",
    "lumiFilterRowBorderPipeline_Low_16s_*",
};

std::mt19937 numbers;
std::string current;
bool isCompared = false;
std::set<std::string> different;

/// An image of a call: its pointer, its step, and the bytes or bits of a pixel.
struct Image {
    int pointer;
    int step;
    std::ptrdiff_t pixelBytes;
    int bitOffset;
};

std::ptrdiff_t integer(const Call& call, int argument) {
    return static_cast<std::ptrdiff_t>(
        call.arguments[argument].number(call.callee->types[argument].fields[0]));
}
void setInteger(Call& call, int argument, std::ptrdiff_t value) {
    call.arguments[argument].set(call.callee->types[argument].fields[0], static_cast<double>(value));
}

std::vector<Image> imagesOf(const Call& call) {
    std::vector<Image> images;
    for (const char* name : {"src", "feature", "dst"}) {
        const int pointer = call.callee->indexOf(name);
        const int step = call.callee->indexOf(std::string(name) + "Step");
        if (pointer < 0 || step < 0) continue;
        // Eigenvalues and -vectors are six floats a pixel.
        const bool isSix = call.callee->name.find("EigenValsVecs") != std::string::npos && name[0] == 'd';
        const int channels = isSix ? 6 : channelsOf(call.callee->name, name);
        images.push_back({pointer, step,
                          static_cast<std::ptrdiff_t>(call.callee->types[pointer].pointee) * channels,
                          call.callee->indexOf(std::string(name) + "BitOffset")});
    }
    return images;
}

/// Places of cuts from 0 to the length, at least `least` apart.
std::vector<int> cuts(int length, int least) {
    std::vector<int> places = {0};
    while (length - places.back() >= 2 * least) {
        const int room = length - places.back() - 2 * least;
        const int next =
            places.back() + least + static_cast<int>(numbers() % (std::min(room, 3 * least) + 1));
        places.push_back(next);
    }
    places.push_back(length);
    return places;
}

struct Rows {
    unsigned char* first;
    std::ptrdiff_t step;
    std::ptrdiff_t bytes;
    int count;

    std::vector<unsigned char> copy() const {
        std::vector<unsigned char> all;
        for (int y = 0; y < count; ++y) all.insert(all.end(), first + y * step, first + y * step + bytes);
        return all;
    }
    void put(const std::vector<unsigned char>& all) const {
        for (int y = 0; y < count; ++y) std::memcpy(first + y * step, all.data() + y * bytes, bytes);
    }
};

/// The call on a tile, with the flags of the sides on which other tiles lie.
LumStatus callTile(const Call& whole, const std::vector<Image>& images, LumSize size, LumRect tile) {
    Call call = whole;
    for (const Image& image : images) {
        auto* place = static_cast<unsigned char*>(whole.arguments[image.pointer].pointer());
        place += tile.y * integer(whole, image.step);
        if (image.bitOffset >= 0) {
            const std::ptrdiff_t bit = integer(whole, image.bitOffset) + tile.x;
            place += bit / 8;
            setInteger(call, image.bitOffset, bit % 8);
        } else {
            place += tile.x * image.pixelBytes;
        }
        call.arguments[image.pointer] = Argument::of(place);
    }
    const int region = call.callee->indexOf("roiSize");
    const auto& sides = call.callee->types[region].fields;
    call.arguments[region].set(sides[0], tile.width);
    call.arguments[region].set(sides[1], tile.height);
    const int border = call.callee->indexOf("border");
    std::ptrdiff_t word = integer(whole, border);
    if (word != lumBorderInMemory) {
        if (tile.y > 0) word |= lumBorderInMemoryTop;
        if (tile.y + tile.height < size.height) word |= lumBorderInMemoryBottom;
        if (tile.x > 0) word |= lumBorderInMemoryLeft;
        if (tile.x + tile.width < size.width) word |= lumBorderInMemoryRight;
    }
    setInteger(call, border, word);
    std::vector<void*> rows;
    if (const int dstRows = call.callee->indexOf("dstRows"); dstRows >= 0) {
        const int src = call.callee->indexOf("src");
        const std::ptrdiff_t pixel = images[0].pixelBytes /
                                     static_cast<std::ptrdiff_t>(call.callee->types[src].pointee) *
                                     (call.callee->name.find("32f") != std::string::npos ? 4 : 2);
        auto* const* all = static_cast<unsigned char* const*>(whole.arguments[dstRows].pointer());
        for (int y = 0; y < tile.height; ++y) rows.push_back(all[tile.y + y] + tile.x * pixel);
        call.arguments[dstRows] = Argument::of(rows.data());
    }
    return call();
}

Rows resultOf(const Call& call, const std::vector<Image>& images, LumSize size) {
    if (const int dstRows = call.callee->indexOf("dstRows"); dstRows >= 0) {
        auto* const* rows = static_cast<unsigned char* const*>(call.arguments[dstRows].pointer());
        const int elements = size.width * channelsOf(call.callee->name, "src");
        const int bytes = call.callee->name.find("32f") != std::string::npos ? 4 : 2;
        return {rows[0], size.height > 1 ? rows[1] - rows[0] : 0, elements * bytes, size.height};
    }
    const Image& dst = images.back();
    const std::ptrdiff_t bytes = dst.bitOffset >= 0 ? (integer(call, dst.bitOffset) + size.width + 7) / 8
                                                    : size.width * dst.pixelBytes;
    return {static_cast<unsigned char*>(call.arguments[dst.pointer].pointer()), integer(call, dst.step),
            bytes, size.height};
}

/// Whether an export takes flags of sides in memory: it has a border of any kind.
bool takesFlags(const Export& callee) {
    return callee.indexOf("border") >= 0 && callee.indexOf("borderValue") >= 0;
}

/// Carries out a call of the row's export, then the same in tiles.
LumStatus callInTiles(const Call& call) {
    const LumStatus status = call();
    if (status != lumStatusOk || call.callee->name != current || !takesFlags(*call.callee)) return status;
    const int border = call.callee->indexOf("border");
    const auto& sides = call.callee->types[call.callee->indexOf("roiSize")].fields;
    const Argument& region = call.arguments[call.callee->indexOf("roiSize")];
    const LumSize size{static_cast<int>(region.number(sides[0])), static_cast<int>(region.number(sides[1]))};
    const std::vector<Image> images = imagesOf(call);
    const Rows result = resultOf(call, images, size);
    const std::vector<unsigned char> expected = result.copy();
    // Bits at the ends of rows belong to nobody.
    result.put(std::vector<unsigned char>(expected.size(), 0));
    if (images.back().bitOffset >= 0) result.put(expected);
    const std::vector<int> columns = cuts(size.width, 18);
    const std::vector<int> rows = cuts(size.height, 10);
    for (std::size_t y = 0; y + 1 < rows.size(); ++y)
        for (std::size_t x = 0; x + 1 < columns.size(); ++x) {
            const LumRect tile{columns[x], rows[y], columns[x + 1] - columns[x], rows[y + 1] - rows[y]};
            EXPECT_EQ(lumStatusOk, callTile(call, images, size, tile)) << current;
        }
    isCompared = true;
    if (result.copy() != expected)
        different.insert(current + " border " + std::to_string(integer(call, border)));
    result.put(expected);
    return status;
}

class Tiles : public FamilyTest {};

} // namespace

TEST_P(Tiles, EqualTheWhole) {
    observe(callInTiles);
    for (const auto& [name, run] : family().rows) {
        current = name;
        different.clear();
        isCompared = false;
        for (int round = 0; round < 3; ++round) digestOf(run, {{{130, 67}, 0, 5}});
        bool isExcepted = false;
        for (const char* pattern : mayDiffer) isExcepted |= fnmatch(pattern, name.c_str(), 0) == 0;
        for (const Export& callee : exports())
            if (callee.name == name) {
                EXPECT_EQ(takesFlags(callee), isCompared) << name;
            }
        EXPECT_EQ(isExcepted, !different.empty()) << testing::PrintToString(different);
    }
    observe(nullptr);
}

FOR_EVERY_FAMILY(Tiles);
