#include <cmath>
#include <limits>

#include "derivative_masks.h"
#include "support/status_checks.h"

using namespace support;

namespace {

/// What a call is asked for.
struct Measure {
    LumSize size;
    int kernelKind = 0;
    int apertureSize = 3;
    int blockSize = 3;
    LumBorderType border = lumBorderReplicate;
};

std::ostream& operator<<(std::ostream& out, const Measure& m) {
    return out << m.size.width << "x" << m.size.height << " kernel " << m.kernelKind << " aperture "
               << m.apertureSize << " block " << m.blockSize << " border " << m.border;
}

/// The members of one source type.
template <class T> struct Members;
template <> struct Members<Lum8u> {
    static constexpr auto smaller = lumiMinEigenVal_8u32f_C1R;
    static constexpr auto smallerBorder = lumiMinEigenValBorder_8u32f_C1R;
    static constexpr auto system = lumiEigenValsVecs_8u32f_C1R;
    static constexpr auto systemBorder = lumiEigenValsVecsBorder_8u32f_C1R;
    static constexpr auto query = lumiMinEigenValGetBufferSize_8u32f_C1R;
    static constexpr auto systemQuery = lumiEigenValsVecsGetBufferSize_8u32f_C1R;
};
template <> struct Members<Lum32f> {
    static constexpr auto smaller = lumiMinEigenVal_32f_C1R;
    static constexpr auto smallerBorder = lumiMinEigenValBorder_32f_C1R;
    static constexpr auto system = lumiEigenValsVecs_32f_C1R;
    static constexpr auto systemBorder = lumiEigenValsVecsBorder_32f_C1R;
    static constexpr auto query = lumiMinEigenValGetBufferSize_32f_C1R;
    static constexpr auto systemQuery = lumiEigenValsVecsGetBufferSize_32f_C1R;
};

enum class Output { smaller, system };

template <class T> int bufferSize(const Measure& m) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, Members<T>::query(m.size, m.apertureSize, m.blockSize, &bytes));
    return bytes;
}

constexpr int borderValue = 60;

template <class T>
LumStatus call(Output output, const Measure& m, const GuardedImage<T>& src, GuardedImage<float>& dst,
               Lum8u* buffer) {
    const auto run = output == Output::smaller ? Members<T>::smallerBorder : Members<T>::systemBorder;
    return run(src.data(), src.step(), dst.data(), dst.step(), m.size, m.kernelKind, m.apertureSize,
               m.blockSize, m.border, static_cast<T>(borderValue), buffer);
}

template <class T>
LumStatus callReplicated(Output output, const Measure& m, const GuardedImage<T>& src,
                         GuardedImage<float>& dst, Lum8u* buffer) {
    const auto run = output == Output::smaller ? Members<T>::smaller : Members<T>::system;
    return run(src.data(), src.step(), dst.data(), dst.step(), m.size, m.kernelKind, m.apertureSize,
               m.blockSize, buffer);
}

/// Whether a side's pixels exist for the derivatives: a flag of either stage says so.
LumBorderType sourceBorder(LumBorderType border) {
    LumBorderType kind = border & 15;
    if (kind != 1 && kind != 3 && kind != 6) kind = kind == 5 ? lumBorderConstant : lumBorderMirror;
    return kind | (border & 0xF0) | (border >> 4 & 0xF0);
}

/// The means of the three products, by planes and the low-pass filter.
struct Means {
    std::vector<float> a, b, c;
};

template <class Derivatives> Means meansOf(const Measure& m, Derivatives derivatives) {
    const LumBorderType planeKind = sourceBorder(m.border) & 15;
    const auto [width, height] = m.size;
    const LumMaskSize mask = m.blockSize * 11;
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiFilterLowpassGetBufferSize_32f_C1R(m.size, mask, &bytes));
    std::vector<Lum8u> buffer(bytes);
    std::vector<float> planes[3], means[3];
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto [dx, dy] = derivatives(x, y);
            planes[0].push_back(dx * dx);
            planes[1].push_back(dx * dy);
            planes[2].push_back(dy * dy);
        }
    for (int i = 0; i < 3; ++i) {
        means[i].resize(planes[i].size());
        EXPECT_STATUS(lumStatusOk,
                      lumiFilterLowpassBorder_32f_C1R(planes[i].data(), width * 4, means[i].data(), width * 4,
                                                      m.size, mask, planeKind, 0, buffer.data()));
    }
    return {means[0], means[1], means[2]};
}

struct Derivatives {
    float dx;
    float dy;
};

template <class T> Means meansOf(const Measure& m, const GuardedImage<T>& src) {
    const DerivativeMask& mask = m.kernelKind == 1 ? scharr3 : m.apertureSize == 3 ? sobel3 : sobel5;
    const LumBorderType border = sourceBorder(m.border);
    const T value = static_cast<T>((m.border & 15) == lumBorderDefaultValue ? 0 : borderValue);
    return meansOf(m, [&](int x, int y) {
        const Gradient g = gradientAt(src, x, y, mask, border, value);
        // left minus right, but a difference of nothing has no sign
        const double dx = m.kernelKind == 1 ? g.dx : 0 - g.dx;
        return Derivatives{static_cast<float>(dx), static_cast<float>(g.dy)};
    });
}

float scaleOf(const Measure& m) {
    const float s = m.apertureSize == 3 ? 1.0F / 4080 : 1.0F / 65280;
    return m.kernelKind == 1 ? s * 0.6125F : s;
}

std::vector<float> smallerEigenvalues(const Measure& m, const Means& means) {
    std::vector<float> all;
    for (std::size_t i = 0; i < means.a.size(); ++i) {
        const float a = means.a[i], b = means.b[i], c = means.c[i];
        const float difference = a - c;
        const float root = std::sqrt(difference * difference + 4.0F * (b * b));
        all.push_back(((a + c) - root) * (scaleOf(m) * 0.5F));
    }
    return all;
}

std::vector<float> eigenSystems(const Measure& m, const Means& means) {
    std::vector<float> all;
    const float s = scaleOf(m);
    for (std::size_t i = 0; i < means.a.size(); ++i) {
        const float a = means.a[i] * s, b = means.b[i] * s, c = means.c[i] * s;
        const float t = a + c, d = a - c;
        const float r = std::sqrt(4.0F * b * b + d * d);
        const float l1 = (t + r) * 0.5F, l2 = (t - r) * 0.5F;
        const float e = std::max(a, c) * 0.001F;
        std::vector<float> six(6);
        if (e > std::min(a, c) || e > a * c - b * b) {
        } else if (e > std::fabs(b)) {
            six = {l1, l2, 0, 1, 1, 0};
        } else {
            const float p = m.kernelKind == 1 ? b : -b;
            const float q1 = l1 - a, q2 = l2 - a;
            const float epsilon = std::numeric_limits<float>::epsilon();
            const float n1 = 1.0F / (std::sqrt(q1 * q1 + p * p) + epsilon);
            const float n2 = 1.0F / (std::sqrt(q2 * q2 + p * p) + epsilon);
            six = {l1, l2, p * n1, q1 * n1, p * n2, q2 * n2};
        }
        all.insert(all.end(), six.begin(), six.end());
    }
    return all;
}

/// Values, where +0 and -0 are one.
void expectSameValues(const std::vector<float>& expected, const std::vector<float>& found, const Measure& m) {
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(expected[i], found[i]) << "element " << i << " of " << m;
}

template <class T> GuardedImage<T>& fillWithShapes(GuardedImage<T>& src, std::mt19937& engine) {
    const unsigned texture = engine() % 4;
    return src.fill([&](int x, int y, int) {
        if (texture == 0) return 77;
        if (texture == 1) return (x / 5 + y / 4) % 2 * 180 + static_cast<int>(engine() % 8);
        return static_cast<int>(engine() % 256);
    });
}

template <class T> void expectMeasures(const Measure& m, std::mt19937& engine, Guard guard = Guard::after) {
    const int reach = m.apertureSize / 2;
    GuardedImage<T> src(m.size.width, m.size.height,
                        {.padding = static_cast<int>(engine() % 3 * sizeof(T)),
                         .offset = static_cast<int>(engine() % 17),
                         .guard = guard,
                         .margin = marginsInMemory(sourceBorder(m.border), reach)});
    fillWithShapes(src, engine);
    const Means means = meansOf(m, src);
    const int shift = static_cast<int>(engine() % 65);
    {
        GuardedBlock buffer(bufferSize<T>(m), Guard::after, shift);
        GuardedImage<float> dst(m.size.width, m.size.height, {.padding = 4, .guard = guard});
        ASSERT_EQ(lumStatusOk, call(Output::smaller, m, src, dst, buffer.as()));
        expectSameValues(smallerEigenvalues(m, means), dst.pixels(), m);
        ASSERT_TRUE(dst.outsideUntouched());
    }
    GuardedBlock buffer(bufferSize<T>(m), Guard::after, shift);
    GuardedImage<float> dst(m.size.width, m.size.height,
                            {.channels = 6, .padding = 4, .offset = 8, .guard = guard});
    ASSERT_EQ(lumStatusOk, call(Output::system, m, src, dst, buffer.as()));
    expectSameValues(eigenSystems(m, means), dst.pixels(), m);
    ASSERT_TRUE(dst.outsideUntouched());
    if (m.border == lumBorderReplicate) {
        GuardedImage<float> plain(m.size.width, m.size.height),
            systems(m.size.width, m.size.height, {.channels = 6});
        ASSERT_EQ(lumStatusOk, callReplicated(Output::smaller, m, src, plain, buffer.as()));
        expectSameValues(smallerEigenvalues(m, means), plain.pixels(), m);
        ASSERT_EQ(lumStatusOk, callReplicated(Output::system, m, src, systems, buffer.as()));
        ASSERT_TRUE(sameBits(dst.pixels(), systems.pixels()));
    }
}

/// The kernels, apertures and blocks that go together.
std::vector<Measure> everyKernel(LumSize size, LumBorderType border = lumBorderReplicate) {
    std::vector<Measure> all;
    for (int kind : {0, 1, 2})
        for (int aperture : {3, 5})
            for (int block : {3, 5})
                if (kind != 1 || aperture == 3) all.push_back({size, kind, aperture, block, border});
    return all;
}

} // namespace

TEST(Eigen, ACheckeredCornerByHand) {
    // one bright pixel of 4 in the middle of 3 x 3, replicated: Sobel sums are known, and the window covers all
    GuardedImage<Lum8u> src(3, 3);
    src.fill([](int x, int y, int) { return x == 1 && y == 1 ? 4 : 0; });
    const Measure m{{3, 3}};
    GuardedBlock buffer(bufferSize<Lum8u>(m));
    GuardedImage<float> dst(3, 3);
    EXPECT_STATUS(lumStatusOk, call(Output::smaller, m, src, dst, buffer.as()));
    // dx is 4, 0, -4 in the corner rows and 8, 0, -8 in the middle: a = c = (4 * 16 + 2 * 64) / 9, b = 0
    const float mean = 192.0F * (1.0F / 9);
    EXPECT_FLOAT_EQ((mean + mean) * (0.5F / 4080), dst.at(1, 1));
    GuardedImage<float> systems(3, 3, {.channels = 6});
    EXPECT_STATUS(lumStatusOk, call(Output::system, m, src, systems, buffer.as()));
    const float six[] = {mean / 4080, mean / 4080, 0, 1, 1, 0};
    for (int i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(six[i], systems.at(1, 1, i)) << i;
}

TEST(Eigen, EveryKernelAndWidthFollowsTheFormulas) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 70; ++width)
        for (const Measure& m : everyKernel({width, 1 + width % 6})) {
            expectMeasures<Lum8u>(m, engine);
            expectMeasures<Lum32f>(m, engine, Guard::before);
        }
}

TEST(Eigen, EveryBorderOnEveryShape) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<LumBorderType> borders = everyBorder();
    for (int flags = 0; flags < 256; flags += 1 + static_cast<int>(engine() % 5))
        borders.push_back(lumBorderDefaultValue | flags << 4);
    for (LumBorderType kind = 0; kind < 16; ++kind) borders.push_back(kind | lumBorderInMemory);
    for (LumBorderType border : {0x101, 0x803, 0x446, 0x2F3, 0xFF6, 0x9F0, 0xFFF}) borders.push_back(border);
    for (LumBorderType border : borders)
        for (LumSize size : {LumSize{1, 1}, LumSize{1, 4}, LumSize{2, 2}, LumSize{5, 3}, LumSize{19, 8}}) {
            // an accepted border needs a kind, or all flags of the second stage
            const auto kernels = everyKernel(size, border);
            const Measure m = kernels[engine() % kernels.size()];
            expectMeasures<Lum8u>(m, engine, engine() % 2 == 0 ? Guard::after : Guard::before);
            expectMeasures<Lum32f>(m, engine, engine() % 2 == 0 ? Guard::after : Guard::before);
        }
}

TEST(Eigen, FloatsAreFormedColumnsFirstInTheStatedOrder) {
    std::mt19937 engine(3);
    GuardedImage<float> src(37, 9, {.margin = 2});
    src.fillRandom(4);
    for (const Measure& m : everyKernel(src.size(), lumBorderInMemory | lumBorderConstant)) {
        const auto smooth = [&](auto v) {
            if (m.kernelKind == 1) return 3.0F * (v(-1) + v(1)) + 10.0F * v(0);
            if (m.apertureSize == 3) return (v(-1) + v(1)) + 2.0F * v(0);
            return ((v(-2) + v(2)) + 4.0F * (v(-1) + v(1))) + 6.0F * v(0);
        };
        const auto difference = [&](auto v) {
            if (m.apertureSize == 3) return v(1) - v(-1);
            return (v(2) - v(-2)) + 2.0F * (v(1) - v(-1));
        };
        const Means means = meansOf(m, [&](int x, int y) {
            const float dx =
                difference([&](int i) { return smooth([&](int j) { return src.at(x + i, y + j); }); });
            const float dy =
                smooth([&](int i) { return difference([&](int j) { return src.at(x + i, y + j); }); });
            return Derivatives{m.kernelKind == 1 ? dx : 0 - dx, dy};
        });
        GuardedBlock buffer(bufferSize<float>(m));
        GuardedImage<float> dst(37, 9), systems(37, 9, {.channels = 6});
        ASSERT_EQ(lumStatusOk, call(Output::smaller, m, src, dst, buffer.as()));
        expectSameValues(smallerEigenvalues(m, means), dst.pixels(), m);
        ASSERT_EQ(lumStatusOk, call(Output::system, m, src, systems, buffer.as()));
        expectSameValues(eigenSystems(m, means), systems.pixels(), m);
    }
}

TEST(Eigen, AFlatImageGivesZeros) {
    GuardedImage<Lum8u> src(20, 6);
    src.fill([](int, int, int) { return 200; });
    for (const Measure& m : everyKernel(src.size())) {
        GuardedBlock buffer(bufferSize<Lum8u>(m));
        GuardedImage<float> dst(20, 6), systems(20, 6, {.channels = 6});
        EXPECT_STATUS(lumStatusOk, call(Output::smaller, m, src, dst, buffer.as()));
        EXPECT_STATUS(lumStatusOk, call(Output::system, m, src, systems, buffer.as()));
        expectSameValues(std::vector<float>(20 * 6), dst.pixels(), m);
        expectSameValues(std::vector<float>(20 * 6 * 6), systems.pixels(), m);
    }
}

TEST(Eigen, OneDirectionOfGradientGivesSixZeros) {
    GuardedImage<Lum8u> src(20, 6);
    src.fill([](int x, int, int) { return x * x % 251; });
    const Measure m{src.size()};
    GuardedBlock buffer(bufferSize<Lum8u>(m));
    GuardedImage<float> systems(20, 6, {.channels = 6});
    EXPECT_STATUS(lumStatusOk, call(Output::system, m, src, systems, buffer.as()));
    expectSameValues(std::vector<float>(20 * 6 * 6), systems.pixels(), m);
}

TEST(Eigen, VectorsPointAlongTheImageForEveryKernel) {
    // a bright band along the falling diagonal with a little of the other direction: the larger eigenvalue's vector
    // goes across the band, up to the right or down to the left
    GuardedImage<Lum8u> src(40, 40);
    src.fill([](int x, int y, int) { return std::abs(x - y) < 3 ? 200 : 3 * ((x + y) % 16); });
    for (const Measure& m : everyKernel(src.size())) {
        GuardedBlock buffer(bufferSize<Lum8u>(m));
        GuardedImage<float> systems(40, 40, {.channels = 6});
        EXPECT_STATUS(lumStatusOk, call(Output::system, m, src, systems, buffer.as()));
        int found = 0;
        for (int i = 8; i < 32; ++i) {
            const int x = i + 3;
            if (systems.at(x, i, 0) < 100 * systems.at(x, i, 1) / 50 || systems.at(x, i, 0) == 0) continue;
            ++found;
            EXPECT_LT(systems.at(x, i, 2) * systems.at(x, i, 3), -0.3F) << m;
            EXPECT_GT(systems.at(x, i, 4) * systems.at(x, i, 5), 0.3F) << m;
        }
        EXPECT_GT(found, 10) << m;
    }
}

TEST(Eigen, KernelKindsZeroAndTwoAreOne) {
    std::mt19937 engine(12);
    GuardedImage<Lum8u> src(33, 7);
    fillWithShapes(src, engine);
    for (int aperture : {3, 5}) {
        GuardedImage<float> first(33, 7, {.channels = 6}), second(33, 7, {.channels = 6});
        const Measure m{src.size(), 0, aperture};
        GuardedBlock buffer(bufferSize<Lum8u>(m));
        EXPECT_STATUS(lumStatusOk, call(Output::system, m, src, first, buffer.as()));
        EXPECT_STATUS(lumStatusOk, call(Output::system, {src.size(), 2, aperture}, src, second, buffer.as()));
        EXPECT_TRUE(sameBits(first.pixels(), second.pixels()));
    }
}

namespace {

template <class T> void expectSizes() {
    for (LumSize size :
         {LumSize{1, 1}, LumSize{16, 3}, LumSize{17, 3}, LumSize{1920, 1080}, LumSize{100000, 1}})
        for (int aperture : {3, 5})
            for (int block : {3, 5}) {
                Lum32s bytes = 0, twin = 0, lowpass = 0;
                EXPECT_STATUS(lumStatusOk, Members<T>::query(size, aperture, block, &bytes));
                EXPECT_STATUS(lumStatusOk, Members<T>::systemQuery(size, aperture, block, &twin));
                EXPECT_STATUS(lumStatusOk,
                              lumiFilterLowpassGetBufferSize_32f_C1R(size, block * 11, &lowpass));
                EXPECT_EQ(bytes, twin);
                EXPECT_GE(bytes, 20 * size.height * ((size.width + 15) & ~15) + lowpass + 224);
            }
    Lum32s bytes = 7;
    EXPECT_STATUS(lumStatusOk, Members<T>::query({2000000000, 2000000000}, 5, 5, &bytes));
    EXPECT_EQ(INT_MAX, bytes);
    EXPECT_STATUS(lumStatusNullPointer, Members<T>::query({0, 0}, 4, 4, nullptr));
    bytes = 7;
    EXPECT_STATUS(lumStatusSizeError, Members<T>::query({0, 1}, 3, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, Members<T>::query({1, -1}, 3, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, Members<T>::query({1, 1}, 4, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, Members<T>::query({1, 1}, 3, 7, &bytes));
    EXPECT_EQ(7, bytes);
}

template <class T> struct Arguments {
    GuardedImage<T> image{6, 4, {.margin = 2}};
    GuardedImage<float> result{36, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(8192);
    const T* src = image.data();
    int srcStep = image.step();
    float* dst = result.data();
    int dstStep = result.step();
    LumSize size{6, 4};
    int kind = 0;
    int aperture = 3;
    int block = 3;
    LumBorderType border = lumBorderReplicate;
    Lum8u* buffer = memory.data();

    LumStatus call(Output output) const {
        const auto run = output == Output::smaller ? Members<T>::smaller : Members<T>::system;
        return run(src, srcStep, dst, dstStep, size, kind, aperture, block, buffer);
    }
    LumStatus callBorder(Output output) const {
        const auto run = output == Output::smaller ? Members<T>::smallerBorder : Members<T>::systemBorder;
        return run(src, srcStep, dst, dstStep, size, kind, aperture, block, border, T{0}, buffer);
    }
};

template <class T> struct Mistake {
    LumStatus status;
    void (*make)(Arguments<T>&);
    bool borderOnly = false;
};

template <class T> void expectRefusalsInOrder() {
    using A = Arguments<T>;
    std::vector<Mistake<T>> mistakes = {
        {lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {lumStatusStepError, [](A& a) { a.srcStep = 6 * sizeof(T) - 1; }},
        {lumStatusStepError, [](A& a) { a.dstStep = 23; }},
        {lumStatusStepAlignmentError, [](A& a) { a.dstStep = 25; }},
        {lumStatusBadArgument, [](A& a) { a.kind = 3; }},
        {lumStatusBadArgument, [](A& a) { a.kind = -1; }},
        {lumStatusSizeError, [](A& a) { a.aperture = 7; }},
        {lumStatusSizeError, [](A& a) { a.block = 1; }},
        {lumStatusBorderError, [](A& a) { a.border = 0x70; }, true},
    };
    if constexpr (std::is_same_v<T, Lum32f>)
        mistakes.insert(mistakes.begin() + 7, {lumStatusStepAlignmentError, [](A& a) { a.srcStep = 42; }});
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            A arguments;
            mistakes[j].make(arguments);
            mistakes[i].make(arguments);
            for (Output output : {Output::smaller, Output::system}) {
                EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.callBorder(output));
                if (!mistakes[i].borderOnly && !mistakes[j].borderOnly) {
                    EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.call(output));
                }
            }
        }
    A scharr;
    scharr.kind = 1;
    scharr.aperture = 5;
    EXPECT_REFUSED(lumStatusSizeError, scharr.result, scharr.call(Output::smaller));
    EXPECT_REFUSED(lumStatusSizeError, scharr.result, scharr.callBorder(Output::system));
    // vectors take 24 bytes per pixel, which the step need not hold
    A narrow;
    narrow.dstStep = 24;
    narrow.size.height = 1;
    EXPECT_STATUS(lumStatusOk, narrow.call(Output::system));
}

} // namespace

TEST(Eigen, SizesCoverTheirFormulaAndRefuseInOrder) {
    expectSizes<Lum8u>();
    expectSizes<Lum32f>();
}

TEST(Eigen, RefusesInOrder8u) { expectRefusalsInOrder<Lum8u>(); }
TEST(Eigen, RefusesInOrder32f) { expectRefusalsInOrder<Lum32f>(); }

TEST(Eigen, AcceptsItsBordersAndNoOthers) {
    for (LumBorderType border = -300; border <= 4200; ++border) {
        Arguments<Lum8u> arguments;
        arguments.border = border;
        const LumBorderType kind = border & 15;
        const bool accepted = border >= 0 && border <= 4095 &&
                              (kind == 1 || kind == 3 || kind == 5 || kind == 6 || (border & 0xF0) == 0xF0);
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBorderError, arguments.callBorder(Output::smaller))
            << border;
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBorderError, arguments.callBorder(Output::system))
            << border;
    }
}
