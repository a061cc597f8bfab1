#include "motion/background_model.h"
#include "support/argument_order.h"

using namespace backgrounds;

TEST(Background, SizeIsTheSumOfTheArrays) {
    // 35 + 29 + ... rounded up to 32 each.
    EXPECT_EQ(64U + 128 + 256 + 1280 + 864 + 256, Model::bytesFor({7, 5}, 3));
    EXPECT_EQ(32U + 128 + 32 + 32 + 32 + 256, Model::bytesFor({1, 1}, 1));
}

TEST(Background, SizeWrapsInThirtyTwoBits) {
    Lum32s bytes = 0;
    EXPECT_EQ(0, lumiFGMMGetBufferSize_8u_C3R({65536, 32768}, 2, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U + 128 + 1572864 + 256), bytes);
}

TEST(Background, InitClearsEveryByteOfTheBlock) {
    for (LumSize size : {LumSize{1, 1}, LumSize{7, 5}}) {
        const std::size_t bytes = Model::bytesFor(size, 3);
        std::vector<unsigned char> memory(bytes + 64, 0xA5);
        unsigned char* block =
            memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64) % 32 + 5;
        ASSERT_EQ(0, lumiFGMMInit_8u_C3R(size, 3, &usual, reinterpret_cast<LumFGMMState*>(block)));
        auto* head =
            reinterpret_cast<unsigned char*>((reinterpret_cast<std::uintptr_t>(block) + 31) / 32 * 32);
        EXPECT_EQ(0, *reinterpret_cast<std::uint32_t*>(head));
        for (unsigned char* p = block; p != block + bytes; ++p)
            if (p < head || p >= head + 96) {
                ASSERT_EQ(0, *p) << p - block;
            }
        EXPECT_EQ(0xA5, block[bytes]);
    }
}

TEST(Background, SizeStatusesComeInTheirOrder) {
    struct A {
        LumSize size{4, 3};
        int maxMixtures = 2;
        Lum32s* bytes;
    };
    Lum32s bytes = -7;
    const std::vector<Fault<A>> faults{
        {"size null", 0, lumStatusNullPointer, [](A& a) { a.bytes = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height negative", 1, lumStatusSizeError, [](A& a) { a.size.height = -3; }},
        {"no mixtures", 2, lumStatusBadArgument, [](A& a) { a.maxMixtures = 0; }},
    };
    expectStatusesInOrder(A{.bytes = &bytes}, faults, [&](const A& a) {
        bytes = -7;
        const LumStatus status = lumiFGMMGetBufferSize_8u_C3R(a.size, a.maxMixtures, a.bytes);
        EXPECT_EQ(status != lumStatusOk, bytes == -7);
        return status;
    });
}

TEST(Background, InitStatusesComeInTheirOrder) {
    GuardedBlock block(Model::bytesFor({4, 3}, 2));
    struct A {
        LumSize size{4, 3};
        int maxMixtures = 2;
        const LumFGMMParams* params = &usual;
        LumFGMMState* state;
    };
    const std::vector<Fault<A>> faults{
        {"params null", 0, lumStatusNullPointer, [](A& a) { a.params = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 1, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"no mixtures", 2, lumStatusBadArgument, [](A& a) { a.maxMixtures = 0; }},
    };
    expectStatusesInOrder(A{.state = block.as<LumFGMMState>()}, faults, [&](const A& a) {
        *block.as() = 0xA5;
        const LumStatus status = lumiFGMMInit_8u_C3R(a.size, a.maxMixtures, a.params, a.state);
        EXPECT_EQ(status != lumStatusOk, *block.as() == 0xA5);
        return status;
    });
}

TEST(Background, FrameStatusesComeInTheirOrder) {
    Model model({8, 2}, 3);
    static const LumFGMMParams tooMany = usual;
    static LumFGMMParams none = usual;
    none.mixtures = 0;
    LumFGMMParams three = usual;
    three.mixtures = 3;
    struct A {
        const Lum8u* src;
        int srcStep = 29;
        Lum8u* dst;
        int dstStep = 11;
        LumSize size{8, 2};
        LumFGMMState* state;
        const LumFGMMParams* params;
    };
    const std::vector<Fault<A>> faults{
        {"src null", 0, lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"srcStep 0", 1, lumStatusStepError, [](A& a) { a.srcStep = 0; }},
        {"dstStep negative", 1, lumStatusStepError, [](A& a) { a.dstStep = -1; }},
        {"width 0", 2, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 2, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"too many mixtures", 3, lumStatusBadArgument, [](A& a) { a.params = &tooMany; }},
        {"no mixtures", 3, lumStatusBadArgument, [](A& a) { a.params = &none; }},
    };
    const A good{
        .src = model.frame.data(), .dst = model.result.data(), .state = model.state(), .params = &three};
    expectStatusesInOrder(good, faults, [&](const A& a) {
        model.result.fill([](int, int, int) { return 9; });
        const LumStatus status =
            lumiFGMMForeground_8u_C3R(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.state, a.params, -1);
        EXPECT_EQ(status != lumStatusOk, model.result.untouched());
        if (status != lumStatusOk) {
            EXPECT_TRUE(model.modes().empty());
        }
        return status;
    });
}

TEST(Background, PictureStatusesComeInTheirOrder) {
    Model model({8, 2});
    struct A {
        Lum8u* dst;
        int dstStep = 25;
        LumSize size{8, 2};
        LumFGMMState* state;
    };
    const std::vector<Fault<A>> faults{
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"dstStep 0", 1, lumStatusStepError, [](A& a) { a.dstStep = 0; }},
        {"width 0", 2, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 2, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
    };
    expectStatusesInOrder(A{.dst = model.background.data(), .state = model.state()}, faults, [&](const A& a) {
        model.background.fill([](int, int, int) { return 9; });
        const LumStatus status = lumiFGMMBackground_8u_C3R(a.dst, a.dstStep, a.size, a.state);
        EXPECT_EQ(status != lumStatusOk, model.background.untouched());
        return status;
    });
}

TEST(Background, StepsShorterThanARowAreTaken) {
    Model model({4, 1});
    EXPECT_EQ(0, lumiFGMMForeground_8u_C3R(model.frame.data(), 1, model.result.data(), 1, {4, 1},
                                           model.state(), nullptr, -1));
}
