#include "fast_members.h"

#include <climits>
#include <functional>

using namespace support;

namespace {

constexpr int scored = lumFastNCorners | lumFastNScore;
constexpr int oriented = scored | lumFastNOrientation;

struct Breach {
    LumStatus status;
    std::function<void(FastParameters&)> commit;
};

/// What the size query and Init refuse, in the order of the tests; the query knows no threshold.
std::vector<Breach> breaches() {
    return {
        {lumStatusSizeError, [](auto& p) { p.size.width = 0; }},
        {lumStatusThresholdError, [](auto& p) { p.threshold = -0.5F; }},
        {lumStatusDataTypeError, [](auto& p) { p.dataType = lumType16u; }},
        {lumStatusCountError, [](auto& p) { p.channels = 3; }},
        {lumStatusBadArgument, [](auto& p) { p.flags = lumFastNOrientation; }},
        {lumStatusOutOfRange, [](auto& p) { p.flags |= lumFastNOrientation, p.bins = 65; }},
        {lumStatusBadArgument, [](auto& p) { p.radius = 4; }},
        {lumStatusOutOfRange, [](auto& p) { p.arcLength = 8; }},
    };
}

/// One breach alone, and with all that are tested after it.
template <class Call> void expectOrder(std::vector<Breach> all, const Call& call) {
    for (std::size_t first = 0; first < all.size(); ++first) {
        FastParameters alone;
        all[first].commit(alone);
        EXPECT_STATUS(all[first].status, call(alone)) << first;
        FastParameters withTheRest;
        for (std::size_t i = all.size(); i-- > first;) all[i].commit(withTheRest);
        EXPECT_STATUS(all[first].status, call(withTheRest)) << first;
    }
}

} // namespace

TEST(FastNGetSize, SizeIsEightPerimetersAnd64) {
    const int widerPointer = static_cast<int>(sizeof(void*)) - 4;
    for (int radius : fastRadii) {
        const int perimeter = lum::kernels::perimeterOf(radius);
        EXPECT_EQ(8 * perimeter + 64 + widerPointer,
                  fastSpecSize({.radius = radius, .arcLength = perimeter}));
    }
}

TEST(FastNGetSize, ChecksInOrder) {
    auto all = breaches();
    all.erase(all.begin() + 1);
    Lum32s size = -7;
    expectOrder(all, [&](const FastParameters& p) {
        EXPECT_STATUS(lumStatusNullPointer, fastSize(p, nullptr));
        return fastSize(p, &size);
    });
    EXPECT_EQ(-7, size);
    EXPECT_STATUS(lumStatusSizeError, fastSize({.size = {4, -1}}, &size));
}

TEST(FastNInit, ChecksInOrderAndWritesNothing) {
    GuardedImage<Lum8u> block(300, 1);
    expectOrder(breaches(), [&](const FastParameters& p) {
        EXPECT_STATUS(lumStatusNullPointer, fastInit(p, nullptr));
        const LumStatus status = fastInit(p, reinterpret_cast<LumFastNSpec*>(block.data()));
        EXPECT_TRUE(block.untouched());
        return status;
    });
}

TEST(FastNGetSize, OnlySixRadii) {
    Lum32s size = 0;
    for (int radius = -1; radius <= 11; ++radius) {
        const int perimeter = lum::kernels::perimeterOf(radius);
        EXPECT_STATUS(perimeter != 0 ? lumStatusOk : lumStatusBadArgument,
                      fastSize({.radius = radius, .arcLength = perimeter}, &size))
            << radius;
    }
    EXPECT_STATUS(lumStatusBadArgument, fastSize({.radius = INT_MIN}, &size));
}

TEST(FastNGetSize, ArcIsAboveHalfThePerimeter) {
    Lum32s size = 0;
    for (int radius : fastRadii) {
        const int perimeter = lum::kernels::perimeterOf(radius);
        for (int arc : {INT_MIN, 0, perimeter / 2, perimeter + 1, INT_MAX})
            EXPECT_STATUS(lumStatusOutOfRange, fastSize({.radius = radius, .arcLength = arc}, &size));
        for (int arc : {perimeter / 2 + 1, perimeter})
            EXPECT_STATUS(lumStatusOk, fastSize({.radius = radius, .arcLength = arc}, &size));
    }
}

TEST(FastNGetSize, AcceptedFlags) {
    Lum32s size = 0;
    for (int flags = 0; flags < 128; ++flags) {
        const bool accepted =
            (flags & 4) != 0 && (flags & ~39) == 0 && ((flags & 2) == 0 || (flags & 32) != 0);
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBadArgument, fastSize({.flags = flags}, &size))
            << flags;
    }
    for (int flags : {4, 36, 38}) EXPECT_STATUS(lumStatusOk, fastSize({.flags = flags}, &size));
    EXPECT_STATUS(lumStatusBadArgument, fastSize({.flags = 2}, &size));
    EXPECT_STATUS(lumStatusBadArgument, fastSize({.flags = 4 | INT_MIN}, &size));
}

TEST(FastNGetSize, BinsMatterWithOrientationOnly) {
    Lum32s size = 0;
    for (int bins : {INT_MIN, 0, 65}) {
        EXPECT_STATUS(lumStatusOk, fastSize({.bins = bins}, &size));
        EXPECT_STATUS(lumStatusOutOfRange, fastSize({.bins = bins, .flags = oriented}, &size));
    }
    for (int bins : {1, 64}) EXPECT_STATUS(lumStatusOk, fastSize({.bins = bins, .flags = oriented}, &size));
}

namespace {
constexpr int firstTableWord = 12 + static_cast<int>(sizeof(void*)) / 4;
constexpr auto notWritten = static_cast<Lum32s>(0xA5A5A5A5);
} // namespace

TEST(FastNInit, RecordHoldsItsFields) {
    FastSpec spec(
        {.size = {41, 37}, .radius = 5, .arcLength = 17, .bins = 24, .flags = 39, .threshold = 12.75F});
    const Lum32s expected[] = {0x4B617390, 1, 1, 41, 37, 5, 17, 24, 39, notWritten};
    for (int i = 0; i < 10; ++i) EXPECT_EQ(expected[i], spec.field(i)) << i;
    EXPECT_EQ(12.75F, spec.field<float>(10));
    EXPECT_EQ(12, spec.field(11));
    EXPECT_EQ(0,
              std::memcmp(lum::kernels::circleOf(5), spec.field<const LumPoint*>(12), 28 * sizeof(LumPoint)));
    for (int k = 0; k < 28; ++k) {
        const double angle = k * 2 * 3.14159265358979323846 / 28;
        EXPECT_FLOAT_EQ(static_cast<float>(std::sin(angle)), spec.field<float>(firstTableWord + k));
        EXPECT_FLOAT_EQ(static_cast<float>(std::cos(angle)), spec.field<float>(firstTableWord + 28 + k));
    }
    EXPECT_EQ(static_cast<float>(24 * 0.15915494309189535), spec.field<float>(firstTableWord + 56));
}

TEST(FastNInit, FirstByteIsTheDistanceToTheRecord) {
    for (int shift = 0; shift < 9; ++shift) {
        FastSpec spec({}, shift);
        const int distance = *reinterpret_cast<const Lum8u*>(spec.get());
        EXPECT_GE(distance, 1);
        EXPECT_LE(distance, 8);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(spec.record()) % 8);
    }
}

TEST(FastNInit, TablesAreWrittenWithOrientationOnly) {
    FastSpec spec({.flags = scored});
    for (int i = 0; i < 33; ++i) EXPECT_EQ(notWritten, spec.field(firstTableWord + i));
}

TEST(FastNGetBufferSize, SixRowsAnd624) {
    FastSpec spec(FastParameters{});
    Lum32s bytes = 0;
    for (int width : {1, 40, 1920, INT_MAX}) {
        EXPECT_STATUS(lumStatusOk, lumiFastNGetBufferSize(spec.get(), {width, 7}, &bytes));
        EXPECT_EQ(static_cast<Lum32s>((static_cast<unsigned>(width) + 2) * 6 + 624), bytes);
    }
    EXPECT_STATUS(lumStatusNullPointer, lumiFastNGetBufferSize(nullptr, {0, 0}, &bytes));
    EXPECT_STATUS(lumStatusNullPointer, lumiFastNGetBufferSize(spec.get(), {0, 0}, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiFastNGetBufferSize(spec.get(), {0, 1}, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiFastNGetBufferSize(spec.get(), {1, -1}, &bytes));
}

namespace {

/// A run or a list that has all it needs; each test takes something away.
struct Prepared {
    FastSpec spec{FastParameters{}};
    GuardedImage<Lum8u> image{40, 30}, corners{40, 30}, scores{40, 30};
    GuardedImage<Lum32s> room{6 * 4, 1};
    GuardedBlock buffer{42 * 6 + 624};
    Lum32s count = untouchedCount;

    const Lum8u* src = image.data();
    Lum8u* marks = corners.data();
    Lum8u* scorePixels = scores.data();
    LumFastNCorner* list = reinterpret_cast<LumFastNCorner*>(room.data());
    Lum32s* cornerCount = &count;
    LumSize size{40, 30};
    LumFastNSpec* object = spec.get();
    Lum8u* work = buffer.as();
    int maxCount = 4;

    LumStatus run() {
        return lumiFastN_8u_C1R(src, image.step(), marks, corners.step(), scorePixels, scores.step(),
                                cornerCount, {0, 0}, size, object, work);
    }
    LumStatus makeList() {
        return lumiFastN2DToVec_8u(marks, corners.step(), scorePixels, scores.step(), list, size, maxCount,
                                   cornerCount, object);
    }
    void expectNothingWritten() const {
        EXPECT_TRUE(corners.untouched());
        EXPECT_TRUE(scores.untouched());
        EXPECT_TRUE(room.untouched());
        EXPECT_EQ(untouchedCount, count);
    }
};

using Call = LumStatus (Prepared::*)();
using Change = std::function<void(Prepared&)>;

/// What the run and the list test of the object and the scores, in order.
std::vector<std::pair<LumStatus, Change>> objectBreaches() {
    return {
        {lumStatusContextMismatch, [](auto& p) { p.spec.setField(0, 0x4B617391); }},
        {lumStatusDataTypeError, [](auto& p) { p.spec.setField(1, lumType16u); }},
        {lumStatusCountError, [](auto& p) { p.spec.setField(2, 3); }},
        {lumStatusSizeError, [](auto& p) { p.spec.setField(4, 0); }},
        {lumStatusBadArgument, [](auto& p) { p.spec.setField(8, 36 | 8); }},
        {lumStatusOutOfRange, [](auto& p) { p.spec.setField(8, 37), p.spec.setField(7, 0); }},
        {lumStatusNullPointer, [](auto& p) { p.scorePixels = nullptr; }},
        {lumStatusBadArgument, [](auto& p) { p.spec.setField(5, 6); }},
        {lumStatusOutOfRange, [](auto& p) { p.spec.setField(6, 8); }},
    };
}

void expectObjectChecks(Call call) {
    const auto all = objectBreaches();
    for (std::size_t first = 0; first < all.size(); ++first) {
        Prepared alone;
        all[first].second(alone);
        EXPECT_STATUS(all[first].first, (alone.*call)()) << first;
        alone.expectNothingWritten();
        Prepared withTheRest;
        for (std::size_t i = all.size(); i-- > first;) all[i].second(withTheRest);
        EXPECT_STATUS(all[first].first, (withTheRest.*call)()) << first;
        withTheRest.expectNothingWritten();
        withTheRest.size = {0, 30};
        EXPECT_STATUS(lumStatusSizeError, (withTheRest.*call)());
    }
}

void expectNullPointers(Call call, const std::vector<Change>& nulls) {
    for (const Change& setNull : nulls) {
        Prepared p;
        p.size = {0, 0};
        p.spec.setField(0, 0);
        setNull(p);
        EXPECT_STATUS(lumStatusNullPointer, (p.*call)());
        p.expectNothingWritten();
    }
}

} // namespace

TEST(FastN_8u_C1R, ChecksInOrder) {
    expectObjectChecks(&Prepared::run);
    expectNullPointers(&Prepared::run,
                       {[](auto& p) { p.src = nullptr; }, [](auto& p) { p.marks = nullptr; },
                        [](auto& p) { p.object = nullptr; }, [](auto& p) { p.work = nullptr; },
                        [](auto& p) { p.cornerCount = nullptr; }});
    for (LumSize size : {LumSize{0, 1}, LumSize{1, -1}, LumSize{INT_MIN, 1}}) {
        Prepared p;
        p.size = size;
        EXPECT_STATUS(lumStatusSizeError, p.run());
        p.expectNothingWritten();
    }
}

TEST(FastN_8u_C1R, NullScoresPassWithoutTheirFlag) {
    Prepared p;
    p.scorePixels = nullptr;
    p.spec.setField(8, lumFastNCorners);
    EXPECT_STATUS(lumStatusOk, p.run());
    EXPECT_STATUS(lumStatusOk, p.makeList());
}

TEST(FastN_8u_C1R, AnyOtherBlockIsAMismatch) {
    for (int byte = 0; byte < 256; ++byte) {
        GuardedBlock block(128);
        std::memset(block.as(), byte, 128);
        Prepared p;
        p.object = block.as<LumFastNSpec>();
        EXPECT_STATUS(lumStatusContextMismatch, p.run());
        EXPECT_STATUS(lumStatusContextMismatch, p.makeList());
    }
}

TEST(FastN2DToVec_8u, ChecksInOrder) {
    expectObjectChecks(&Prepared::makeList);
    expectNullPointers(&Prepared::makeList,
                       {[](auto& p) { p.marks = nullptr; }, [](auto& p) { p.list = nullptr; },
                        [](auto& p) { p.cornerCount = nullptr; }, [](auto& p) { p.object = nullptr; }});
    Prepared p;
    p.maxCount = -1;
    EXPECT_STATUS(lumStatusSizeError, p.makeList());
    p.spec.setField(0, 0);
    EXPECT_STATUS(lumStatusSizeError, p.makeList());
    p.expectNothingWritten();
}

namespace {

/// Five marks in two rows.
struct FiveMarks {
    GuardedImage<Lum8u> marks{70, 2}, scores{70, 2};
    Lum32s count = untouchedCount;

    FiveMarks() {
        marks.at(3, 0) = 64 | 5;
        marks.at(69, 0) = 128;
        marks.at(0, 1) = 128 | 31;
        marks.at(40, 1) = 64;
        marks.at(41, 1) = 64 | 63;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 70; ++x) scores.at(x, y) = static_cast<Lum8u>(x + 100 * y + 1);
    }
    std::vector<LumFastNCorner> list(const FastParameters& p, int maxCount) {
        FastSpec spec(p);
        GuardedImage<Lum32s> room(6 * std::max(maxCount, 1), 1);
        auto* corners = reinterpret_cast<LumFastNCorner*>(room.data());
        EXPECT_STATUS(lumStatusOk,
                      lumiFastN2DToVec_8u(marks.data(), marks.step(), scores.data(), scores.step(), corners,
                                          {70, 2}, maxCount, &count, spec.get()));
        EXPECT_TRUE(maxCount != 0 || room.untouched());
        return {corners, corners + std::min(maxCount, count)};
    }
};

} // namespace

TEST(FastN2DToVec_8u, MarksInRasterOrder) {
    FiveMarks five;
    const auto list = five.list({.bins = 32, .flags = oriented}, 10);
    EXPECT_EQ(5, five.count);
    ASSERT_EQ(5U, list.size());
    const LumFastNCorner expected[] = {{3, 0, 0, 5, 56.25F, 4},
                                       {69, 0, 1, 0, 0, 70},
                                       {0, 1, 1, 31, 348.75F, 101},
                                       {40, 1, 0, 0, 0, 141},
                                       {41, 1, 0, 63, 708.75F, 142}};
    EXPECT_EQ(0, std::memcmp(expected, list.data(), sizeof expected));
}

TEST(FastN2DToVec_8u, AngleIsRoundedOnce) {
    FiveMarks five;
    EXPECT_EQ(1800.0F / 7.0F, five.list({.bins = 7, .flags = oriented}, 10)[0].angle);
}

TEST(FastN2DToVec_8u, MinusOneForWhatIsMissing) {
    FiveMarks five;
    const auto bare = five.list({.flags = lumFastNCorners}, 10);
    EXPECT_EQ(-1, bare[0].bin);
    EXPECT_EQ(-1.0F, bare[0].angle);
    EXPECT_EQ(-1.0F, bare[0].score);
    const auto withScores = five.list({.flags = scored}, 10);
    EXPECT_EQ(-1, withScores[2].bin);
    EXPECT_EQ(101.0F, withScores[2].score);
}

TEST(FastN2DToVec_8u, MaxCountThreeOfFive) {
    FiveMarks five;
    EXPECT_EQ(3U, five.list({}, 3).size());
    EXPECT_EQ(5, five.count);
}

TEST(FastN2DToVec_8u, MaxCountZeroCountsOnly) {
    FiveMarks five;
    EXPECT_TRUE(five.list({}, 0).empty());
    EXPECT_EQ(5, five.count);
}
