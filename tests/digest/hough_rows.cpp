#include <algorithm>

#include "digest/digest.h"

namespace digest {
namespace {

constexpr int capacity = 12;

/// Pixels that are not 0 where a picture is brightest, and two lines.
struct Edges : Picture<Lum8u> {
    explicit Edges(const Case& c) : Picture(c.size, 1, c.offset) {
        fill(c.seed);
        for (int y = 0; y < c.size.height; ++y)
            for (int x = 0; x < c.size.width; ++x) {
                Lum8u& pixel = row(y)[x];
                if (pixel < 245 && x != y && 2 * y != c.size.height) pixel = 0;
            }
    }
};

LumPoint32f stepsOf(const Case& c) {
    const LumPoint32f all[] = {{1, 3.14159F / 180}, {0.5F, 0.05F}, {2, 0.02F}};
    LumPoint32f steps = all[c.seed % 3];
    steps.x = std::min(steps.x, static_cast<float>(c.size.width + c.size.height));
    return steps;
}

struct Lines {
    Edges edges;
    LumPoint32f steps;
    Lum32s bytes = 0;
    LumStatus sizeStatus;
    Memory buffer;
    LumPoint32f lines[capacity] = {};
    LumPoint32f range[2] = {{-20, 0.4F}, {60, 2.2F}};
    int count = -1;

    explicit Lines(const Case& c)
        : edges(c),
          steps(stepsOf(c)),
          sizeStatus(lumiHoughLineGetSize_8u_C1R(c.size, steps, capacity, &bytes)),
          buffer(bytes) {}
    void addTo(Digest& digest, LumStatus status) const {
        digest.add(status);
        digest.add(count);
        for (const LumPoint32f& line : lines) digest.add(line.x), digest.add(line.y);
    }
};

struct Segments {
    Edges edges;
    LumPoint32f steps;
    Lum32s specBytes = 0, bufferBytes = 0;
    LumStatus sizeStatus, initStatus;
    Memory spec, buffer;
    Lum32s lines[4 * capacity] = {};
    int count = -1;

    explicit Segments(const Case& c)
        : edges(c),
          steps(stepsOf(c)),
          sizeStatus(lumiHoughProbLineGetSize_8u_C1R(c.size, steps, &specBytes, &bufferBytes)),
          spec(specBytes),
          buffer(bufferBytes) {
        initStatus = lumiHoughProbLineInit_8u32f_C1R(c.size, steps, 7, object());
    }
    LumHoughProbSpec* object() { return reinterpret_cast<LumHoughProbSpec*>(spec.data()); }
};

const RowFile file("hough", [] {
    row("lumiHoughLineGetSize_8u_C1R", [](Digest& digest, const Case& c) {
        const Lines lines(c);
        digest.add(lines.sizeStatus);
        digest.add(lines.bytes);
    });
    row("lumiHoughLine_8u32f_C1R", [](Digest& digest, const Case& c) {
        Lines l(c);
        l.addTo(digest, lumiHoughLine_8u32f_C1R(l.edges.data(), l.edges.step(), c.size, l.steps, 4, l.lines,
                                                capacity, &l.count, l.buffer.data()));
    });
    row("lumiHoughLine_Region_8u32f_C1R", [](Digest& digest, const Case& c) {
        Lines l(c);
        l.addTo(digest,
                lumiHoughLine_Region_8u32f_C1R(l.edges.data(), l.edges.step(), c.size, l.lines, l.range,
                                               capacity, &l.count, l.steps, 4, l.buffer.data()));
    });
    row("lumiHoughProbLineGetSize_8u_C1R", [](Digest& digest, const Case& c) {
        const Segments segments(c);
        digest.add(segments.sizeStatus);
        digest.add(segments.specBytes);
        digest.add(segments.bufferBytes);
    });
    row("lumiHoughProbLineInit_8u32f_C1R", [](Digest& digest, const Case& c) {
        const Segments segments(c);
        digest.add(segments.initStatus);
        digest.addBytes(segments.spec.data(), segments.spec.size());
    });
    row("lumiHoughProbLine_8u32f_C1R", [](Digest& digest, const Case& c) {
        Segments s(c);
        digest.add(lumiHoughProbLine_8u32f_C1R(s.edges.data(), s.edges.step(), c.size, 5, 4, 2, s.lines,
                                               capacity, &s.count, s.buffer.data(), s.object()));
        digest.add(s.count);
        for (Lum32s coordinate : s.lines) digest.add(coordinate);
    });
});

} // namespace
} // namespace digest
