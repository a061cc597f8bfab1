// Lines and segments in the picture of edges: steps of a pixel and of a degree.
#include <memory>

#include "rows.h"

namespace bench {
namespace {

constexpr LumPoint32f delta{1, 3.14159F / 180};

struct Lines {
    static constexpr int threshold = 200;
    static constexpr int capacity = 1000;
    std::vector<LumPoint32f> lines = std::vector<LumPoint32f>(capacity);
    std::vector<Lum8u> buffer;
    LumPoint32f range[2];
    int count = 0;

    Lines() {
        Lum32s bytes = 0;
        lumiHoughLineGetSize_8u_C1R(size, delta, capacity, &bytes);
        buffer.resize(bytes);
    }
    void search() {
        lumiHoughLine_8u32f_C1R(edges().data, edges().step(), size, delta, threshold, lines.data(), capacity,
                                &count, buffer.data());
    }
    void searchUprightHalf() {
        range[0] = {-1000, 0.8F};
        range[1] = {1000, 2.4F};
        lumiHoughLine_Region_8u32f_C1R(edges().data, edges().step(), size, lines.data(), range, capacity,
                                       &count, delta, threshold, buffer.data());
    }
};

struct Segments {
    static constexpr int capacity = 5000;
    std::vector<Lum32s> lines = std::vector<Lum32s>(4 * capacity);
    std::vector<Lum8u> spec;
    std::vector<Lum8u> buffer;
    int count = 0;

    Segments() {
        Lum32s specBytes = 0;
        Lum32s bufferBytes = 0;
        lumiHoughProbLineGetSize_8u_C1R(size, delta, &specBytes, &bufferBytes);
        spec.resize(specBytes);
        buffer.resize(bufferBytes);
        lumiHoughProbLineInit_8u32f_C1R(size, delta, 0, object());
    }
    LumHoughProbSpec* object() { return reinterpret_cast<LumHoughProbSpec*>(spec.data()); }
    void search() {
        lumiHoughProbLine_8u32f_C1R(edges().data, edges().step(), size, 80, 50, 10, lines.data(), capacity,
                                    &count, buffer.data(), object());
    }
};

template <class Search> Setup work(void (Search::*run)()) {
    return [run] {
        auto search = std::make_shared<Search>();
        return [search, run] { (search.get()->*run)(); };
    };
}

const RowFile file([] {
    row("HoughLine_8u32f_1_1deg_t200", work(&Lines::search));
    row("HoughLine_Region_8u32f_1_1deg_t200", work(&Lines::searchUprightHalf));
    row("HoughProbLine_8u32f_1_1deg_t80", work(&Segments::search));
});

} // namespace

} // namespace bench
