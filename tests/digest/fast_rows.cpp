#include <algorithm>

#include "digest/digest.h"

namespace digest {
namespace {

/// A search over the whole picture; the seed chooses the circle.
struct Search {
    LumSize size;
    int radius;
    int arcLength;
    int flags;
    Memory spec, buffer;
    Picture<Lum8u> src, corners, scores;
    Lum32s specBytes = 0, bufferBytes = 0, count = 0;

    Search(const Case& c, int searchFlags)
        : size(c.size), flags(searchFlags), src(c.size, 1, c.offset), corners(c.size), scores(c.size) {
        constexpr int radii[] = {3, 1, 2, 9, 5, 7};
        constexpr int arcs[] = {9, 5, 8, 27, 15, 22};
        radius = radii[c.seed % 6];
        arcLength = arcs[c.seed % 6];
        src.fill(c.seed);
        corners.clear();
        scores.clear();
        lumiFastNGetSize(size, radius, arcLength, 32, flags, lumType8u, 1, &specBytes);
        spec = Memory(specBytes);
        lumiFastNInit(size, radius, arcLength, 32, flags, 12, lumType8u, 1, object());
        lumiFastNGetBufferSize(object(), size, &bufferBytes);
        buffer = Memory(bufferBytes);
    }
    LumFastNSpec* object() { return reinterpret_cast<LumFastNSpec*>(spec.data()); }
    LumStatus run(LumPoint offset) {
        return lumiFastN_8u_C1R(src.data(), src.step(), corners.data(), corners.step(), scores.data(),
                                scores.step(), &count, offset, size, object(), buffer.data());
    }
    LumStatus list(std::vector<LumFastNCorner>& corner) {
        return lumiFastN2DToVec_8u(corners.data(), corners.step(), scores.data(), scores.step(),
                                   corner.data(), size, static_cast<int>(corner.size()), &count, object());
    }
};

constexpr int scored = lumFastNCorners | lumFastNScore;
constexpr int everyFlag = scored | lumFastNSuppression | lumFastNOrientation;

const RowFile file("fast", [] {
    row("lumiFastNGetSize", [](Digest& digest, const Case& c) {
        // Where pointers are wider the object is larger by what one pointer has grown.
        digest.add(Search(c, scored).specBytes - static_cast<Lum32s>(sizeof(void*)));
    });
    row("lumiFastNInit", [](Digest& digest, const Case& c) {
        Search search(c, everyFlag);
        const Lum8u* record = search.spec.data() + search.spec.data()[0];
        digest.addBytes(record, 36);
        digest.addBytes(record + 40, 8);
        digest.addBytes(record + 48 + sizeof(void*), search.specBytes - 8 - 48 - sizeof(void*));
    });
    row("lumiFastNGetBufferSize",
        [](Digest& digest, const Case& c) { digest.add(Search(c, scored).bufferBytes); });
    row("lumiFastN_8u_C1R", [](Digest& digest, const Case& c) {
        for (int flags : {int{lumFastNCorners}, scored, scored | lumFastNSuppression, everyFlag})
            for (LumPoint offset : {LumPoint{0, 0}, LumPoint{2, -3}}) {
                Search search(c, flags);
                digest.add(search.run(offset));
                digest.add(search.count);
                search.corners.addTo(digest);
                search.scores.addTo(digest);
            }
    });
    row("lumiFastN2DToVec_8u", [](Digest& digest, const Case& c) {
        Search search(c, everyFlag);
        search.run({0, 0});
        std::vector<LumFastNCorner> corners(20);
        digest.add(search.list(corners));
        digest.add(search.count);
        for (int i = 0; i < std::min(search.count, 20); ++i) digest.addBytes(&corners[i], sizeof corners[i]);
    });
});

} // namespace
} // namespace digest
