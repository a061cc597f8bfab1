#include <cstring>
#include <vector>

#include "filter/separable_spec.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr Lum32s unwritten = -77;

struct Query {
    LumSize roi{10, 10};
    LumSize kernel{3, 3};
    LumDataType dataType = lumType8u;
    LumDataType kernelType = lumType16s;
    int channels = 1;

    LumStatus buffer(Lum32s* size) const {
        return lumiFilterSeparableGetBufferSize(roi, kernel, dataType, kernelType, channels, size);
    }
    LumStatus bufferL(Lum32s* size) const {
        return lumiFilterSeparableGetBufferSize_L({roi.width, roi.height}, {kernel.width, kernel.height},
                                                  dataType, kernelType, channels, size);
    }
    LumStatus spec(Lum32s* size) const {
        return lumiFilterSeparableGetSpecSize(kernel, kernelType, channels, size);
    }
    LumStatus specL(Lum32s* size) const {
        return lumiFilterSeparableGetSpecSize_L({kernel.width, kernel.height}, kernelType, channels, size);
    }
};

template <class Call> void expectNothingWritten(LumStatus status, const Query& query, Call call) {
    Lum32s size = unwritten;
    EXPECT_EQ(status, (query.*call)(&size));
    EXPECT_EQ(unwritten, size);
}

/// A block for the spec of three and two taps, from its first byte.
struct SpecBlock {
    GuardedBlock block{(3 + 2) * 4 + 127};
    std::vector<unsigned char> before{block.as(), block.as() + block.size()};

    LumFilterSeparableSpec* get() { return block.as<LumFilterSeparableSpec>(); }
    bool untouched() { return std::memcmp(before.data(), block.as(), before.size()) == 0; }
};

/// The arguments of an Init; the divisor is one of integers only.
template <class K> struct InitCall {
    const K* rowKernel;
    const K* columnKernel;
    LumSize size;
    int divisor;
    LumDataType type;
    int channels;
    LumFilterSeparableSpec* spec;
    int scale = 0;
};

LumStatus init(const InitCall<Lum16s>& c) {
    return lumiFilterSeparableInit_16s(c.rowKernel, c.columnKernel, c.size, c.divisor, c.scale, c.type,
                                       c.channels, c.spec);
}
LumStatus initL(const InitCall<Lum16s>& c) {
    return lumiFilterSeparableInit_16s_L(c.rowKernel, c.columnKernel, {c.size.width, c.size.height},
                                         c.divisor, c.scale, c.type, c.channels, c.spec);
}
LumStatus init(const InitCall<Lum32f>& c) {
    return lumiFilterSeparableInit_32f(c.rowKernel, c.columnKernel, c.size, c.type, c.channels, c.spec);
}
LumStatus initL(const InitCall<Lum32f>& c) {
    return lumiFilterSeparableInit_32f_L(c.rowKernel, c.columnKernel, {c.size.width, c.size.height}, c.type,
                                         c.channels, c.spec);
}

constexpr Lum16s kernel16s[] = {1, -2, 3};
constexpr Lum32f kernel32f[] = {1.5F, -2.5F, 3.5F};

} // namespace

TEST(SeparableSizes, OfThreeByTwoTapsByHand) {
    const Query query{.roi = {10, 5}, .kernel = {3, 2}};
    Lum32s size = 0;
    EXPECT_STATUS(lumStatusOk, query.spec(&size));
    EXPECT_EQ(5 * 2 + 127, size) << "five taps of two bytes and the space to align them";
    EXPECT_STATUS(lumStatusOk, query.buffer(&size));
    const int pointers = 2 * sizeof(void*);
    EXPECT_EQ(2 * 12 * 4 + 6 * 4 + pointers + 64, size)
        << "two rows of 12 floats, and 24 bytes for the row taps";
}

TEST(SeparableSizes, FollowTheirFormulas) {
    const int pointerBytes = sizeof(void*);
    for (int channels : {1, 3, 4})
        for (LumDataType kernelType : {lumType16s, lumType32f})
            for (LumDataType dataType : {lumType8u, lumType16u, lumType16s, lumType32f})
                for (LumSize roi : {LumSize{1, 1}, LumSize{641, 480}})
                    for (LumSize kernel : {LumSize{1, 1}, LumSize{5, 3}, LumSize{2, 31}}) {
                        const Query query{roi, kernel, dataType, kernelType, channels};
                        const int e = kernelType == lumType16s ? 2 : 4;
                        const int w = kernel.width;
                        const int h = kernel.height;
                        const int buffer =
                            (e * w + (roi.width + w - 1) * h) * channels * 4 + h * pointerBytes + 64;
                        Lum32s size = 0;
                        EXPECT_STATUS(lumStatusOk, query.buffer(&size));
                        EXPECT_EQ(buffer, size);
                        EXPECT_STATUS(lumStatusOk, query.bufferL(&size));
                        EXPECT_EQ(buffer, size);
                        EXPECT_STATUS(lumStatusOk, query.spec(&size));
                        EXPECT_EQ((w + h) * e + 127, size);
                        EXPECT_STATUS(lumStatusOk, query.specL(&size));
                        EXPECT_EQ((w + h) * e + 127, size);
                    }
}

TEST(SeparableSizes, WrapIn32Bits) {
    Lum32s size = 0;
    EXPECT_STATUS(lumStatusOk, (Query{{0x7FFFFFFF, 1}, {1, 1}}).buffer(&size));
    const unsigned pointerBytes = sizeof(void*);
    EXPECT_EQ(static_cast<Lum32s>((2U + 0x7FFFFFFFU) * 4U + pointerBytes + 64U), size);
    EXPECT_STATUS(lumStatusOk, (Query{{1, 1}, {0x7FFFFFFF, 1}}).spec(&size));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U * 2U + 127U), size);
}

TEST(SeparableSizes, PlainQueriesTestThePointerFirstAndWideOnesTheSizes) {
    for (LumSize bad : {LumSize{0, 5}, LumSize{5, 0}, LumSize{-3, 5}}) {
        for (const Query& query : {Query{bad, {3, 3}}, Query{{5, 5}, bad}}) {
            EXPECT_STATUS(lumStatusNullPointer, query.buffer(nullptr));
            EXPECT_STATUS(lumStatusSizeError, query.bufferL(nullptr));
            expectNothingWritten(lumStatusSizeError, query, &Query::buffer);
            expectNothingWritten(lumStatusSizeError, query, &Query::bufferL);
        }
        const Query query{{5, 5}, bad};
        EXPECT_STATUS(lumStatusNullPointer, query.spec(nullptr));
        EXPECT_STATUS(lumStatusSizeError, query.specL(nullptr));
        expectNothingWritten(lumStatusSizeError, query, &Query::spec);
        expectNothingWritten(lumStatusSizeError, query, &Query::specL);
    }
    EXPECT_STATUS(lumStatusNullPointer, (Query{.dataType = lumType64f}).bufferL(nullptr));
    EXPECT_STATUS(lumStatusNullPointer, (Query{.kernelType = lumType64f}).specL(nullptr));
}

TEST(SeparableSizes, TypesThenChannels) {
    for (int bad : {0, 2, 11, 19, -1}) {
        expectNothingWritten(lumStatusDataTypeError, {.dataType = bad, .channels = 2}, &Query::buffer);
        expectNothingWritten(lumStatusDataTypeError, {.dataType = bad, .channels = 2}, &Query::bufferL);
    }
    for (int bad : {0, 1, 5, 19})
        for (auto call : {&Query::buffer, &Query::bufferL, &Query::spec, &Query::specL})
            expectNothingWritten(lumStatusDataTypeError, {.kernelType = bad, .channels = 2}, call);
    for (int bad : {0, 2, 5, -1})
        for (auto call : {&Query::buffer, &Query::bufferL, &Query::spec, &Query::specL})
            expectNothingWritten(lumStatusChannelCountError, {.channels = bad}, call);
}

TEST(SeparableSizes, PointerWideSizesBeyond32BitsAreSizeErrors) {
    if constexpr (sizeof(std::intptr_t) > 4) {
        const std::intptr_t large = static_cast<std::intptr_t>(0x80000000U);
        SpecBlock b;
        Lum32s size = unwritten;
        for (LumSizeL bad : {LumSizeL{large, 1}, LumSizeL{1, large}}) {
            EXPECT_STATUS(lumStatusSizeError,
                          lumiFilterSeparableGetBufferSize_L(bad, {1, 1}, lumType8u, lumType16s, 1, &size));
            EXPECT_STATUS(lumStatusSizeError,
                          lumiFilterSeparableGetBufferSize_L({1, 1}, bad, lumType8u, lumType16s, 1, &size));
            EXPECT_STATUS(lumStatusSizeError, lumiFilterSeparableGetSpecSize_L(bad, lumType16s, 1, &size));
            EXPECT_STATUS(lumStatusSizeError, lumiFilterSeparableInit_16s_L(kernel16s, kernel16s, bad, 1, 0,
                                                                            lumType8u, 1, b.get()));
            EXPECT_STATUS(lumStatusSizeError,
                          lumiFilterSeparableInit_32f_L(kernel32f, kernel32f, bad, lumType8u, 1, b.get()));
        }
        EXPECT_EQ(unwritten, size);
        EXPECT_TRUE(b.untouched());
    }
}

TEST(SeparableInit, RefusesInItsOrderAndWritesNothing) {
    SpecBlock b;
    LumFilterSeparableSpec* spec = b.get();
    const Lum16s* k = kernel16s;
    std::vector<std::pair<LumStatus, InitCall<Lum16s>>> ofIntegers{
        {lumStatusNullPointer, {nullptr, k, {0, 0}, 0, 99, 2, spec}},
        {lumStatusNullPointer, {k, nullptr, {0, 0}, 0, 99, 2, spec}},
        {lumStatusNullPointer, {k, k, {0, 0}, 0, 99, 2, nullptr}},
        {lumStatusSizeError, {k, k, {0, 2}, 0, 99, 2, spec}},
        {lumStatusSizeError, {k, k, {3, -1}, 0, 99, 2, spec}},
    };
    for (LumDataType type : {lumType16u, lumType32f, lumType64f, lumType1u})
        ofIntegers.push_back({lumStatusDataTypeError, {k, k, {3, 2}, 0, type, 2, spec}});
    for (int channels : {0, 2, 5})
        ofIntegers.push_back({lumStatusChannelCountError, {k, k, {3, 2}, 0, lumType8u, channels, spec}});
    ofIntegers.push_back({lumStatusDivisorError, {k, k, {3, 2}, 0, lumType16s, 4, spec}});

    const Lum32f* f = kernel32f;
    std::vector<std::pair<LumStatus, InitCall<Lum32f>>> ofFloats{
        {lumStatusNullPointer, {nullptr, f, {0, 0}, 1, 99, 2, spec}},
        {lumStatusNullPointer, {f, nullptr, {0, 0}, 1, 99, 2, spec}},
        {lumStatusNullPointer, {f, f, {0, 0}, 1, 99, 2, nullptr}},
        {lumStatusSizeError, {f, f, {0, 2}, 1, 99, 2, spec}},
        {lumStatusSizeError, {f, f, {3, 0}, 1, 99, 2, spec}},
    };
    for (LumDataType type : {lumType16s, lumType64f, lumType1u})
        ofFloats.push_back({lumStatusDataTypeError, {f, f, {3, 2}, 1, type, 2, spec}});
    for (int channels : {0, 2, 5})
        ofFloats.push_back({lumStatusChannelCountError, {f, f, {3, 2}, 1, lumType8u, channels, spec}});

    const auto expectRefused = [&](const auto& table) {
        for (const auto& [expected, call] : table) {
            EXPECT_EQ(expected, init(call));
            EXPECT_EQ(expected, initL(call));
            EXPECT_TRUE(b.untouched());
        }
    };
    expectRefused(ofIntegers);
    expectRefused(ofFloats);
}

TEST(SeparableInit, FieldsAndKernelsLieAtTheFirst64ByteBoundary) {
    for (int shift = 0; shift < 64; ++shift) {
        GuardedBlock block((3 + 2) * 2 + 127, Guard::after, shift);
        auto* place = block.as();
        auto* spec = reinterpret_cast<LumFilterSeparableSpec*>(place);
        ASSERT_EQ(lumStatusOk, init(InitCall<Lum16s>{.rowKernel = kernel16s,
                                                     .columnKernel = kernel16s,
                                                     .size = {3, 2},
                                                     .divisor = 5,
                                                     .type = lumType8u,
                                                     .channels = 3,
                                                     .spec = spec,
                                                     .scale = 9}));
        const lum::SeparableSpec& fields = lum::separableSpecIn(spec);
        const auto* start = reinterpret_cast<const Lum8u*>(&fields);
        ASSERT_EQ(0U, reinterpret_cast<std::uintptr_t>(start) % 64);
        ASSERT_LT(start - place, 64);
        EXPECT_EQ(0, fields.kernelTag);
        EXPECT_EQ(3, fields.kernelWidth);
        EXPECT_EQ(2, fields.kernelHeight);
        EXPECT_EQ(5, fields.divisor);
        EXPECT_EQ(9, fields.scale);
        EXPECT_EQ(3, fields.channels);
        EXPECT_EQ(start + 64, fields.rowKernel);
        EXPECT_EQ(start + 64 + 3 * sizeof(Lum16s), fields.columnKernel);
        EXPECT_EQ(nullptr, fields.secondRowKernel);
        EXPECT_EQ(nullptr, fields.secondColumnKernel);
        EXPECT_EQ(0, std::memcmp(fields.rowKernel, kernel16s, 3 * sizeof(Lum16s)));
        EXPECT_EQ(0, std::memcmp(fields.columnKernel, kernel16s, 2 * sizeof(Lum16s)));
    }
}

TEST(SeparableInit, FloatsHaveTagOneDivisorOneAndNoScale) {
    SpecBlock b;
    for (LumDataType type : {lumType8u, lumType16u, lumType32f}) {
        ASSERT_EQ(lumStatusOk, init(InitCall<Lum32f>{kernel32f, kernel32f, {3, 2}, 1, type, 4, b.get()}));
        const lum::SeparableSpec& fields = lum::separableSpecIn(b.get());
        EXPECT_EQ(1, fields.kernelTag);
        EXPECT_EQ(1, fields.divisor);
        EXPECT_EQ(0, fields.scale);
        EXPECT_EQ(4, fields.channels);
        EXPECT_EQ(0, std::memcmp(fields.rowKernel, kernel32f, 3 * sizeof(Lum32f)));
        EXPECT_EQ(0, std::memcmp(fields.columnKernel, kernel32f, 2 * sizeof(Lum32f)));
    }
}

TEST(SeparableInit, TheCallersKernelsMayGoAway) {
    std::vector<Lum16s> kernel{1, 2, 1};
    SpecBlock b;
    ASSERT_EQ(lumStatusOk,
              init(InitCall<Lum16s>{kernel.data(), kernel.data(), {3, 2}, 4, lumType16s, 1, b.get()}));
    kernel.assign(3, -1);
    const auto* row = static_cast<const Lum16s*>(lum::separableSpecIn(b.get()).rowKernel);
    EXPECT_EQ(1, row[0]);
    EXPECT_EQ(2, row[1]);
}
