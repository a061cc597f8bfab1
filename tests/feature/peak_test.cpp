#include <climits>
#include <cmath>
#include <limits>

#include "feature_rows.h"
#include "kernels/feature/peak.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T> struct Members;
template <> struct Members<Lum32f> {
    static constexpr auto run = lumiFindPeaks3x3_32f_C1R;
    static constexpr auto query = lumiFindPeaks3x3GetBufferSize_32f_C1R;
};
template <> struct Members<Lum32s> {
    static constexpr auto run = lumiFindPeaks3x3_32s_C1R;
    static constexpr auto query = lumiFindPeaks3x3GetBufferSize_32s_C1R;
};

template <class T> struct Search {
    T threshold;
    LumSpatialNorm norm = lumSpatialNormInf;
    int border = 1;
    int most = 100000;
};

using Places = std::vector<std::pair<int, int>>;

template <class T> Places peaksOf(const GuardedImage<T>& src, const Search<T>& search) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, Members<T>::query(src.size().width, &bytes));
    GuardedBlock buffer(bytes);
    const int room = std::min(search.most, src.size().width * src.size().height);
    GuardedBlock list(static_cast<std::size_t>(room) * sizeof(LumPoint));
    int count = -1;
    EXPECT_STATUS(lumStatusOk,
                  Members<T>::run(src.data(), src.step(), src.size(), search.threshold, list.as<LumPoint>(),
                                  search.most, &count, search.norm, search.border, buffer.as()));
    Places places;
    for (int i = 0; i < count; ++i) places.emplace_back(list.as<LumPoint>()[i].x, list.as<LumPoint>()[i].y);
    return places;
}

template <class T> Places plainPeaks(const GuardedImage<T>& src, const Search<T>& search) {
    Places places;
    const auto [width, height] = src.size();
    for (int y = search.border; y < height - search.border; ++y)
        for (int x = search.border; x < width - search.border; ++x) {
            const double v = static_cast<double>(src.at(x, y));
            if (!(std::fabs(v) > static_cast<double>(search.threshold))) continue;
            bool peak = true;
            for (int j = -1; j <= 1; ++j)
                for (int i = -1; i <= 1; ++i) {
                    if (search.norm == lumSpatialNormL1 && i != 0 && j != 0) continue;
                    const double other = static_cast<double>(src.at(x + i, y + j));
                    if (v > 0 ? other > v : other < v) peak = false;
                }
            if (peak && static_cast<int>(places.size()) < search.most) places.emplace_back(x, y);
        }
    return places;
}

/// An image of the given numbers, row by row.
template <class T> void set(GuardedImage<T>& src, const std::vector<T>& pixels) {
    src.fill([&](int x, int y, int) { return pixels[y * src.size().width + x]; });
}

template <class T> void expectPlainPeaks() {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width : kernelWidths())
        for (int height : {2, 3, 7})
            for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
                if (width < 2) continue;
                GuardedImage<T> src(width, height,
                                    {.padding = static_cast<int>(engine() % 3) * 4,
                                     .offset = static_cast<int>(engine() % 9) * 4,
                                     .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
                const int reach = 1 + static_cast<int>(engine() % 20);
                src.fill([&](int, int, int) { return static_cast<int>(engine() % (2 * reach + 1)) - reach; });
                const Search<T> search{static_cast<T>(static_cast<int>(engine() % (reach + 2)) - 1), norm,
                                       1 + static_cast<int>(engine() % (std::min(width, height) / 2)),
                                       engine() % 2 == 0 ? 100000 : 1 + static_cast<int>(engine() % 20)};
                ASSERT_EQ(plainPeaks(src, search), peaksOf(src, search)) << width << "x" << height;
            }
}

} // namespace

TEST(Peaks, MaximaAndMinimaByHand) {
    GuardedImage<Lum32s> src(5, 4);
    set<Lum32s>(src, {0, 0, 0, 0,  0, //
                      0, 5, 4, 0,  0, //
                      0, 0, 0, -7, 0, //
                      0, 0, 0, 0,  0});
    EXPECT_EQ((Places{{1, 1}, {3, 2}}), peaksOf<Lum32s>(src, {3}));
    EXPECT_EQ((Places{{1, 1}, {3, 2}}), peaksOf<Lum32s>(src, {4}));
    EXPECT_EQ((Places{{3, 2}}), peaksOf<Lum32s>(src, {5}));
    EXPECT_EQ((Places{}), peaksOf<Lum32s>(src, {7}));
}

TEST(Peaks, FourNeighboursLookPastTheCorners) {
    GuardedImage<Lum32s> src(4, 3);
    set<Lum32s>(src, {9, 0, 0, 0, //
                      0, 5, 0, 0, //
                      0, 0, 0, 9});
    EXPECT_EQ((Places{}), peaksOf<Lum32s>(src, {1, lumSpatialNormInf}));
    EXPECT_EQ((Places{{1, 1}}), peaksOf<Lum32s>(src, {1, lumSpatialNormL1}));
}

TEST(Peaks, EveryWidthFollowsThePlainRule32f) { expectPlainPeaks<Lum32f>(); }
TEST(Peaks, EveryWidthFollowsThePlainRule32s) { expectPlainPeaks<Lum32s>(); }

TEST(Peaks, PlateausAreKeptWhole) {
    GuardedImage<Lum32f> src(9, 5);
    src.fill([](int, int, int) { return 3; });
    EXPECT_EQ(21U, peaksOf<Lum32f>(src, {2.5F}).size());
    EXPECT_EQ(0U, peaksOf<Lum32f>(src, {3}).size());
    EXPECT_EQ((Places{{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}),
              peaksOf<Lum32f>(src, {1, lumSpatialNormInf, 1, 5}));
}

TEST(Peaks, AListOfOneHoldsTheFirstInScanOrder) {
    GuardedImage<Lum32s> src(30, 6);
    src.fill([](int x, int y, int) { return x == 20 && y == 2 ? 5 : x == 3 && y == 4 ? 90 : 0; });
    EXPECT_EQ((Places{{20, 2}}), peaksOf<Lum32s>(src, {1, lumSpatialNormInf, 1, 1}));
}

TEST(Peaks, AnImageOf3x3LooksAtItsMiddle) {
    GuardedImage<Lum32f> src(3, 3);
    src.fill([](int, int, int) { return 1; });
    EXPECT_EQ((Places{{1, 1}}), peaksOf<Lum32f>(src, {0}));
}

TEST(Peaks, ABorderOfHalfTheSideLeavesNothing) {
    GuardedImage<Lum32f> src(4, 6);
    src.fill([](int, int, int) { return 1; });
    EXPECT_EQ((Places{}), peaksOf<Lum32f>(src, {0, lumSpatialNormInf, 2}));
}

TEST(Peaks, TheLowestIntegerHasItsTrueMagnitude) {
    for (int width : {3, 10}) {
        GuardedImage<Lum32s> src(width, 3);
        src.fill([](int x, int y, int) { return x == 1 && y == 1 ? INT_MIN : 0; });
        EXPECT_EQ((Places{{1, 1}}), peaksOf<Lum32s>(src, {INT_MAX}));
    }
}

TEST(Peaks, BelowZeroEveryMagnitudeIsAboveTheThreshold) {
    for (Lum32s threshold : {-1, -5, INT_MIN}) {
        GuardedImage<Lum32s> src(12, 3);
        EXPECT_EQ(10U, peaksOf<Lum32s>(src, {threshold}).size());
    }
    GuardedImage<Lum32f> src(12, 3);
    EXPECT_EQ(10U, peaksOf<Lum32f>(src, {-0.5F}).size());
    EXPECT_EQ(0U, peaksOf<Lum32f>(src, {0}).size());
}

TEST(Peaks, FloatsWithinTheSmallestNormalAreEqual) {
    constexpr float tiny = std::numeric_limits<float>::denorm_min();
    constexpr float smallest = std::numeric_limits<float>::min();
    for (int width : {3, 10}) {
        GuardedImage<Lum32f> src(width, 3);
        src.fill([](int x, int y, int) {
            return x == 1 && y == 1 ? smallest : x == 0 && y == 0 ? 2 * smallest : 0;
        });
        EXPECT_EQ((Places{{1, 1}}), peaksOf<Lum32f>(src, {smallest / 2, lumSpatialNormInf, 1, 1}));
        src.at(0, 0) = 2 * smallest + 2 * tiny;
        EXPECT_EQ((Places{}), peaksOf<Lum32f>(src, {smallest / 2, lumSpatialNormInf, 1, 1}));
    }
}

TEST(Peaks, InfiniteAndIncomparableValuesAreNoPeaks) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    for (int width : {3, 10})
        for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
            GuardedImage<Lum32f> src(width, 3);
            src.at(1, 1) = infinity;
            EXPECT_EQ((Places{}), peaksOf<Lum32f>(src, {1, norm}));
            src.at(1, 1) = notANumber;
            EXPECT_EQ((Places{}), peaksOf<Lum32f>(src, {1, norm}));
            src.at(1, 1) = 4;
            src.at(0, 1) = notANumber;
            src.at(1, 2) = notANumber;
            EXPECT_EQ((Places{{1, 1}}), peaksOf<Lum32f>(src, {1, norm}));
        }
}

TEST(Peaks, SizesFollowTheirFormula) {
    for (int width : {1, 2, 3, 4, 7, 8, 1920}) {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, lumiFindPeaks3x3GetBufferSize_32f_C1R(width, &bytes));
        EXPECT_EQ((5 + width) / 4 * 128 + 32, bytes);
    }
    Lum32s bytes = 7;
    EXPECT_STATUS(lumStatusNullPointer, lumiFindPeaks3x3GetBufferSize_32s_C1R(0, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiFindPeaks3x3GetBufferSize_32s_C1R(0, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiFindPeaks3x3GetBufferSize_32s_C1R(-3, &bytes));
    EXPECT_EQ(7, bytes);
}

namespace {

template <class T> struct Arguments {
    GuardedImage<T> image{6, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(1024);
    LumPoint list[8] = {};
    int count = 55;
    const T* src = image.data();
    int step = image.step();
    LumSize size{6, 4};
    LumPoint* peaks = list;
    int most = 8;
    int* peakCount = &count;
    LumSpatialNorm norm = lumSpatialNormInf;
    int border = 1;
    Lum8u* buffer = memory.data();

    LumStatus call() const {
        return Members<T>::run(src, step, size, T{1}, peaks, most, peakCount, norm, border, buffer);
    }
};

template <class T> struct Mistake {
    LumStatus status;
    void (*make)(Arguments<T>&);
};

template <class T> void expectRefusalsInOrder() {
    using A = Arguments<T>;
    const std::vector<Mistake<T>> mistakes = {
        {lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.peaks = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.peakCount = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {lumStatusSizeError, [](A& a) { a.most = 0; }},
        {lumStatusSizeError, [](A& a) { a.border = 0; }},
        {lumStatusSizeError, [](A& a) { a.border = 3; }},
        {lumStatusStepError, [](A& a) { a.step = 23; }},
        {lumStatusStepError, [](A& a) { a.step = -24; }},
        {lumStatusStepAlignmentError, [](A& a) { a.step = 25; }},
        {lumStatusBadArgument, [](A& a) { a.norm = lumSpatialNormL2; }},
        {lumStatusBadArgument, [](A& a) { a.norm = -1; }},
    };
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            A arguments;
            mistakes[j].make(arguments);
            mistakes[i].make(arguments);
            EXPECT_STATUS(mistakes[i].status, arguments.call()) << i << ", " << j;
            EXPECT_EQ(55, arguments.count);
        }
}

} // namespace

TEST(Peaks, RefusesInOrder32f) { expectRefusalsInOrder<Lum32f>(); }
TEST(Peaks, RefusesInOrder32s) { expectRefusalsInOrder<Lum32s>(); }

namespace {

template <class T, bool eightNeighbours> void expectKernelsAgree() {
    using namespace lum::kernels;
    std::mt19937 engine(31);
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<T> above(width + 2, guard, shift), current(width + 2, guard, shift),
            below(width + 2, guard, shift);
        const unsigned values = 2 + engine() % 30;
        for (GuardedRow<T>* row : {&above, &current, &below})
            row->fill([&](std::ptrdiff_t) {
                return static_cast<int>(engine() % values) - static_cast<int>(values / 2);
            });
        const PeakRows<T> rows{above.data() + 1, current.data() + 1, below.data() + 1};
        for (std::ptrdiff_t room : {std::ptrdiff_t{width}, std::ptrdiff_t{1 + width / 9}}) {
            std::vector<LumPoint> plain(width), fast(width);
            const auto threshold = static_cast<T>(engine() % 3);
            const auto found =
                findPeaksInRowScalar<T, eightNeighbours>(rows, width, threshold, {4, 9}, plain.data(), room);
            ASSERT_EQ(found, (findPeaksInRow<T, eightNeighbours>(rows, width, threshold, {4, 9}, fast.data(),
                                                                 room)));
            for (std::ptrdiff_t i = 0; i < found; ++i) {
                ASSERT_EQ(plain[i].x, fast[i].x);
                ASSERT_EQ(plain[i].y, fast[i].y);
            }
        }
    });
}

} // namespace

TEST(Peaks, KernelsAgreeWithTheScalarForm) {
    expectKernelsAgree<Lum32f, true>();
    expectKernelsAgree<Lum32f, false>();
    expectKernelsAgree<Lum32s, true>();
    expectKernelsAgree<Lum32s, false>();
}
