#include <functional>
#include <string>

#include "morph/compound_members.h"
#include "support/member_test.h"

using namespace support;

namespace {

/// One thing wrong with a call. Faults are listed in the order of the tests; those of one field exclude each other.
template <class T> struct Fault {
    std::string what;
    std::string field;
    LumStatus status;
    std::function<void(CompoundCall<T>&)> apply;
};

template <class T> using Faults = std::vector<Fault<T>>;

template <class T> void addNulls(Faults<T>& faults) {
    faults.push_back({"src null", "src", lumStatusNullPointer, [](auto& c) { c.src = nullptr; }});
    faults.push_back({"dst null", "dst", lumStatusNullPointer, [](auto& c) { c.dst = nullptr; }});
    faults.push_back({"spec null", "spec", lumStatusNullPointer, [](auto& c) { c.spec = nullptr; }});
    faults.push_back({"buffer null", "buffer", lumStatusNullPointer, [](auto& c) { c.buffer = nullptr; }});
}

template <class T> void addValue(Faults<T>& faults) {
    faults.push_back({"value null", "border", lumStatusNullPointer, [](auto& c) {
                          c.border = lumBorderConstant;
                          c.value = nullptr;
                      }});
}

/// Some bytes below those of a row; of rows beyond all sizes anything.
std::intptr_t stepBelow(std::intptr_t width, int pixel, int less) {
    return width < 100000 ? width * pixel - less : 0;
}

template <class T> void addGeometry(Faults<T>& faults, int channels) {
    const int pixel = channels * static_cast<int>(sizeof(T));
    for (int bad : {0, -3}) {
        faults.push_back({"width", "width", lumStatusSizeError, [=](auto& c) { c.roiSize.width = bad; }});
        faults.push_back({"height", "height", lumStatusSizeError, [=](auto& c) { c.roiSize.height = bad; }});
    }
    for (int less : {static_cast<int>(sizeof(T)), 1, 10000}) {
        faults.push_back({"srcStep", "srcStep", lumStatusStepError,
                          [=](auto& c) { c.srcStep = stepBelow(c.roiSize.width, pixel, less); }});
        faults.push_back({"dstStep", "dstStep", lumStatusStepError,
                          [=](auto& c) { c.dstStep = stepBelow(c.roiSize.width, pixel, less); }});
    }
    if (sizeof(T) > 1) {
        faults.push_back(
            {"srcStep odd", "srcStep", lumStatusStepAlignmentError, [](auto& c) { c.srcStep += 1; }});
        faults.push_back(
            {"dstStep odd", "dstStep", lumStatusStepAlignmentError, [](auto& c) { c.dstStep += 1; }});
    }
}

template <class T> void addBorder(Faults<T>& faults, LumBorderType border) {
    faults.push_back({"border " + std::to_string(border), "border", lumStatusBorderError,
                      [=](auto& c) { c.border = border; }});
}

template <class T> void addOverflow(Faults<T>& faults) {
    for (const char* side : {"width", "height"})
        faults.push_back({"huge " + std::string(side), side, lumStatusSizeOverflow, [=](auto& c) {
                              (*side == 'w' ? c.roiSize.width : c.roiSize.height) = 0x7FFFFFFF;
                          }});
}

template <class T> void addInPlace(Faults<T>& faults, Operator op) {
    if (op == Operator::gradient && std::is_same_v<T, Lum16s>)
        faults.push_back({"in place", "dst", lumStatusInPlaceNotSupported,
                          [](auto& c) { c.dst = const_cast<T*>(c.src); }});
}

template <class T> Faults<T> faultsOf(const CompoundMember<T>& member) {
    Faults<T> faults;
    const bool isGradient = member.op == Operator::gradient;
    const bool sizesFirst = member.op != Operator::open && member.op != Operator::close;
    if (!member.isLong) {
        addNulls(faults);
        addGeometry(faults, member.channels);
        for (LumBorderType border : {-1, INT_MIN + 1, 0, 2, 4, 7, 15, 0x10, 0xE0, 0x100, 0xF00, 0xE00 | 0x10,
                                     0xF2, 0xF4, 4096, 4096 | 1, 8192 | 0xF0})
            addBorder(faults, border);
        if (isGradient)
            for (LumBorderType border : {5, 0xF5, 0x101, 0x1F0, 256, 256 | 6}) addBorder(faults, border);
        if (member.op == Operator::open || member.op == Operator::tophat)
            for (LumBorderType border : {0x1F0, 0xFF0, 0x8F0}) addBorder(faults, border);
        if (member.channels > 1) addValue(faults);
        addInPlace(faults, member.op);
        return faults;
    }
    if (sizesFirst) addOverflow(faults);
    addNulls(faults);
    addValue(faults);
    addGeometry(faults, member.channels);
    for (LumBorderType border : {-1, INT_MIN + 1, 0, 2, 4, 7, 15, 0x10, 0xE0, 0x100, 0xF00, 0xEE0, 0xF02,
                                 0x1E2, 4096, 4096 | 1, 8192 | 0xF0})
        addBorder(faults, border);
    if (!sizesFirst && sizeof(T) == 1 && sizeof(void*) == 4) {
        // Rows and steps of such sizes need elements of one byte.
        if (member.channels == 1)
            faults.push_back({"huge width", "width", lumStatusSizeOverflow, [](auto& c) {
                                  c.roiSize.width = 0x7FFFFFFF;
                                  c.srcStep = c.dstStep = 0x7FFFFFFF;
                              }});
    }
    if (!sizesFirst)
        faults.push_back(
            {"huge height", "height", lumStatusSizeOverflow, [](auto& c) { c.roiSize.height = 0x7FFFFFFF; }});
    if (sizeof(T) == 1) {
        faults.push_back(
            {"huge srcStep", "srcStep", lumStatusStepError, [](auto& c) { c.srcStep = 0x7FFFFFFF; }});
        faults.push_back(
            {"huge dstStep", "dstStep", lumStatusStepError, [](auto& c) { c.dstStep = 0x7FFFFFFF; }});
    }
    addInPlace(faults, member.op);
    return faults;
}

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(CompoundChecks, Elements);

/// A call that would do, on images that tell whether it did.
template <class T> struct Stage {
    GuardedImage<T> src, dst;
    CompoundMemory<T> memory;
    T value[4] = {};

    explicit Stage(const CompoundMember<T>& member)
        : src(10, 6, {.channels = member.channels, .margin = 4}),
          dst(10, 6, {.channels = member.channels}),
          memory(member, MorphMask::full(3, 3), {10, 6}) {}
    CompoundCall<T> call() {
        return {src.data(),         src.step(), dst.data(),    dst.step(),     {10, 6},
                lumBorderReplicate, value,      memory.spec(), memory.buffer()};
    }
    bool untouched() const { return src.untouched() && dst.untouched(); }
};

} // namespace

MEMBER_TEST(CompoundChecks, EachFaultHasItsStatus) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        Stage<TypeParam> stage(member);
        for (const auto& fault : faultsOf(member)) {
            auto call = stage.call();
            fault.apply(call);
            ASSERT_EQ(fault.status, member.run(call)) << member.name << ": " << fault.what;
            ASSERT_TRUE(stage.untouched()) << member.name << ": " << fault.what;
        }
    }
}

MEMBER_TEST(CompoundChecks, TheFirstOfTwoFaultsCounts) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        Stage<TypeParam> stage(member);
        const auto faults = faultsOf(member);
        for (std::size_t i = 0; i < faults.size(); ++i)
            for (std::size_t j = i + 1; j < faults.size(); ++j) {
                if (faults[i].field == faults[j].field) continue;
                // A step too small for its row depends on the width; sizes first.
                const bool sizeFirst = faults[j].field == "width" || faults[j].field == "height";
                auto call = stage.call();
                faults[sizeFirst ? j : i].apply(call);
                faults[sizeFirst ? i : j].apply(call);
                if (faults[j].what == "huge width" && faults[i].field.find("Step") != std::string::npos)
                    continue;
                ASSERT_EQ(faults[i].status, member.run(call))
                    << member.name << ": " << faults[i].what << " and " << faults[j].what;
                ASSERT_TRUE(stage.untouched());
            }
    }
}

MEMBER_TEST(CompoundChecks, TheSmallestStepsPass) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        GuardedImage<TypeParam> src(10, 6, {.channels = member.channels}),
            dst(10, 6, {.channels = member.channels});
        CompoundMemory<TypeParam> memory(member, MorphMask::full(3, 3), {10, 6});
        EXPECT_STATUS(lumStatusOk, member.run({src.data(),
                                               src.step(),
                                               dst.data(),
                                               dst.step(),
                                               {10, 6},
                                               lumBorderReplicate,
                                               nullptr,
                                               memory.spec(),
                                               memory.buffer()}));
    }
}

MEMBER_TEST(CompoundChecks, WordsThatAreAccepted) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        Stage<TypeParam> stage(member);
        std::vector<LumBorderType> words{1, 3, 6, 0xF0, 0xF1, 0x13};
        if (member.isLong || member.op != Operator::gradient)
            for (LumBorderType word : {5, 0xF5, 0x101, 0xFF6, 0xF01, 0xF03}) words.push_back(word);
        if (member.isLong)
            for (LumBorderType word : {0x1F0, 0xFF0, 0xF2, 0xFF4, 0xFFF}) words.push_back(word);
        if (!member.isLong && (member.op == Operator::close || member.op == Operator::blackhat))
            for (LumBorderType word : {0x1F0, 0xFF0, 0x8F0}) words.push_back(word);
        for (LumBorderType word : words) {
            auto call = stage.call();
            call.border = word;
            EXPECT_STATUS(lumStatusOk, member.run(call)) << member.name << " 0x" << std::hex << word;
        }
    }
}

MEMBER_TEST(CompoundChecks, OtherKindsNeedNoValue) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        Stage<TypeParam> stage(member);
        for (LumBorderType kind : {1, 3, 0xF0}) {
            auto call = stage.call();
            call.border = kind;
            call.value = nullptr;
            EXPECT_STATUS(lumStatusOk, member.run(call)) << member.name;
        }
    }
}
