// Corners by the segment test: one more pixel of the arc than half the circle, and a threshold of 20.
#include <memory>

#include "rows.h"

namespace bench {
namespace {

struct Work {
    std::vector<Lum8u> spec;
    std::vector<Lum8u> buffer;
    Plane<Lum8u> corners;
    Plane<Lum8u> scores;
    Lum32s count = 0;

    Work(int radius, int arcLength, int flags) {
        Lum32s bytes = 0;
        lumiFastNGetSize(size, radius, arcLength, bins, flags, lumType8u, 1, &bytes);
        spec.resize(bytes);
        lumiFastNInit(size, radius, arcLength, bins, flags, 20, lumType8u, 1, object());
        lumiFastNGetBufferSize(object(), size, &bytes);
        buffer.resize(bytes);
    }
    LumFastNSpec* object() { return reinterpret_cast<LumFastNSpec*>(spec.data()); }
    void run() {
        lumiFastN_8u_C1R(scene().data, scene().step(), corners.data, corners.step(), scores.data,
                         scores.step(), &count, {0, 0}, size, object(), buffer.data());
    }

    static constexpr int bins = 32;
};

constexpr int plain = lumFastNCorners;
constexpr int suppressed = lumFastNCorners | lumFastNScore | lumFastNSuppression;

Setup corners(int radius, int arcLength, int flags) {
    return [=] {
        auto work = std::make_shared<Work>(radius, arcLength, flags);
        return [work] { work->run(); };
    };
}

Setup listOfCorners() {
    return [] {
        auto work = std::make_shared<Work>(3, 9, suppressed | lumFastNOrientation);
        work->run();
        auto list = std::make_shared<std::vector<LumFastNCorner>>(work->count);
        return [work, list] {
            lumiFastN2DToVec_8u(work->corners.data, work->corners.step(), work->scores.data,
                                work->scores.step(), list->data(), size, static_cast<int>(list->size()),
                                &work->count, work->object());
        };
    };
}

const RowFile file([] {
    row("FastN_8u_r1_n5_plain", corners(1, 5, plain));
    row("FastN_8u_r1_n5_suppressed", corners(1, 5, suppressed));
    row("FastN_8u_r2_n7_plain", corners(2, 7, plain));
    row("FastN_8u_r2_n7_suppressed", corners(2, 7, suppressed));
    row("FastN_8u_r3_n9_plain", corners(3, 9, plain));
    row("FastN_8u_r3_n9_suppressed", corners(3, 9, suppressed));
    row("FastN_8u_r3_n9_suppressed_oriented", corners(3, 9, suppressed | lumFastNOrientation));
    row("FastN_8u_r5_n15_plain", corners(5, 15, plain));
    row("FastN_8u_r5_n15_suppressed", corners(5, 15, suppressed));
    row("FastN_8u_r7_n21_plain", corners(7, 21, plain));
    row("FastN_8u_r7_n21_suppressed", corners(7, 21, suppressed));
    row("FastN_8u_r9_n27_plain", corners(9, 27, plain));
    row("FastN_8u_r9_n27_suppressed", corners(9, 27, suppressed));
    row("FastN2DToVec_8u", listOfCorners());
});

} // namespace

} // namespace bench
