#include "motion/flow_scene.h"
#include "support/argument_order.h"
#include "support/member_test.h"

using namespace support;

namespace {

MEMBER_TEST_SUITE(Flow, FlowElements);

} // namespace

TEST(FlowSize, FormulasOfTheThreeTypes) {
    struct Case {
        int winSize;
        LumSize size;
        Lum32s bytes8u, bytes16u, bytes32f;
    };
    // W = 15, H = 9, B = 30; W = 645, H = 485, B = 1290.
    for (const Case& c : {Case{1,
                               {10, 4},
                               160 * 4 + 2 * (30 + 270) + 90,
                               4 * (30 + 405 + 48 * 4) + 84,
                               4 * (30 + 270 + 48 * 4) + 84},
                          Case{21,
                               {640, 480},
                               960 * 24 + 2 * (1290 + 2 * 645 * 485) + 90,
                               4 * (1290 + 3 * 645 * 485 + 288 * 24) + 84,
                               4 * (1290 + 2 * 645 * 485 + 288 * 24) + 84}}) {
        Lum32s bytes = 0;
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType8u, 0, &bytes));
        EXPECT_EQ(c.bytes8u, bytes);
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType16u, 7, &bytes));
        EXPECT_EQ(c.bytes16u, bytes);
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType32f, -1, &bytes));
        EXPECT_EQ(c.bytes32f, bytes);
    }
}

TEST(FlowSize, StatusesComeInTheirOrder) {
    struct A {
        int winSize = 5;
        LumSize size{20, 10};
        LumDataType type = lumType8u;
        Lum32s* bytes;
    };
    Lum32s bytes = -7;
    const std::vector<Fault<A>> faults{
        {"winSize 0", 0, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"width 0", 0, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height negative", 0, lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {"type 16s", 1, lumStatusDataTypeError, [](A& a) { a.type = lumType16s; }},
        {"type 64f", 1, lumStatusDataTypeError, [](A& a) { a.type = lumType64f; }},
        {"size null", 2, lumStatusNullPointer, [](A& a) { a.bytes = nullptr; }},
    };
    expectStatusesInOrder(A{.bytes = &bytes}, faults, [&](const A& a) {
        bytes = -7;
        const LumStatus status = lumiOpticalFlowPyrLKGetSize(a.winSize, a.size, a.type, 0, a.bytes);
        EXPECT_EQ(status != lumStatusOk, bytes == -7);
        return status;
    });
}

MEMBER_TEST(Flow, InitStatusesComeInTheirOrder) {
    GuardedBlock block(FlowState<TypeParam>::bytesFor({20, 10}, 5));
    LumOpticalFlowState* state = nullptr;
    struct A {
        LumOpticalFlowState** state;
        LumSize size{20, 10};
        int winSize = 5;
        Lum8u* memory;
    };
    const std::vector<Fault<A>> faults{
        {"winSize 0", 0, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"width 0", 0, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 0, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"state null", 1, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"memory null", 1, lumStatusNullPointer, [](A& a) { a.memory = nullptr; }},
    };
    expectStatusesInOrder(A{.state = &state, .memory = block.as()}, faults, [&](const A& a) {
        state = nullptr;
        const LumStatus status = FlowMembers<TypeParam>::init(a.state, a.size, a.winSize, 3, a.memory);
        EXPECT_EQ(status != lumStatusOk, state == nullptr);
        return status;
    });
}

MEMBER_TEST(Flow, StateHoldsWhatInitWasGiven) {
    for (std::size_t spare = 0; spare < 20; ++spare) {
        GuardedBlock block(FlowState<TypeParam>::bytesFor({20, 10}, 5), Guard::after, spare);
        LumOpticalFlowState* state = nullptr;
        ASSERT_EQ(0, FlowMembers<TypeParam>::init(&state, {20, 10}, 5, 3, block.as()));
        Lum32s words[7];
        std::memcpy(words, state, sizeof words);
        const Lum32s unwritten = static_cast<Lum32s>(0xA5A5A5A5);
        EXPECT_EQ((std::vector<Lum32s>{20, 10, 1, FlowMembers<TypeParam>::type, unwritten, 3, 5}),
                  std::vector<Lum32s>(words, words + 7));
        std::uintptr_t work;
        std::memcpy(&work, reinterpret_cast<unsigned char*>(state) + (sizeof(void*) == 4 ? 28 : 32),
                    sizeof work);
        EXPECT_EQ(0U, work % 16);
        EXPECT_GE(work, reinterpret_cast<std::uintptr_t>(state) + 32);
    }
}

MEMBER_TEST(Flow, CallStatusesComeInTheirOrder) {
    const auto before = still<TypeParam>(1);
    const auto after = still<TypeParam>(2);
    FlowState<TypeParam> state({100, 100}, 9);
    const LumPoint32f from{60, 50};
    LumPoint32f to{};
    Lum8s status = 0;
    Lum32f error = 0;
    struct A {
        const LumPyramid* pyramid1;
        const LumPyramid* pyramid2;
        const LumPoint32f* from;
        LumPoint32f* to;
        Lum8s* status;
        Lum32f* error;
        LumOpticalFlowState* state;
        int count = 1;
        int winSize = 9;
        int maxLevel = 1;
        int iterations = 5;
        float threshold = 0.1F;
    };
    const std::vector<Fault<A>> faults{
        {"pyramid1 null", 0, lumStatusNullPointer, [](A& a) { a.pyramid1 = nullptr; }},
        {"pyramid2 null", 0, lumStatusNullPointer, [](A& a) { a.pyramid2 = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"prevPoints null", 0, lumStatusNullPointer, [](A& a) { a.from = nullptr; }},
        {"nextPoints null", 0, lumStatusNullPointer, [](A& a) { a.to = nullptr; }},
        {"status null", 0, lumStatusNullPointer, [](A& a) { a.status = nullptr; }},
        {"error null", 0, lumStatusNullPointer, [](A& a) { a.error = nullptr; }},
        {"no points", 1, lumStatusSizeError, [](A& a) { a.count = 0; }},
        {"winSize 0", 1, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"winSize of another state", 2, lumStatusSizeError, [](A& a) { a.winSize = 10; }},
        {"maxLevel negative", 3, lumStatusBadArgument, [](A& a) { a.maxLevel = -1; }},
        {"no iterations", 3, lumStatusBadArgument, [](A& a) { a.iterations = 0; }},
        {"threshold negative", 3, lumStatusBadArgument, [](A& a) { a.threshold = -1e-20F; }},
        {"maxLevel above the first pyramid", 3, lumStatusBadArgument, [](A& a) { a.maxLevel = 2; }},
        {"maxLevel above the second pyramid", 3, lumStatusBadArgument,
         [](A& a) { std::swap(a.pyramid1, a.pyramid2), a.maxLevel = 2; }},
    };
    const A good{.pyramid1 = &before.record,
                 .pyramid2 = &after.record,
                 .from = &from,
                 .to = &to,
                 .status = &status,
                 .error = &error,
                 .state = state.state};
    expectStatusesInOrder(good, faults, [&](const A& a) {
        to = {61, 51};
        status = -77;
        error = -77;
        const LumStatus result =
            FlowMembers<TypeParam>::run(a.pyramid1, a.pyramid2, a.from, a.to, a.status, a.error, a.count,
                                        a.winSize, a.maxLevel, a.iterations, a.threshold, a.state);
        if (result != lumStatusOk) {
            EXPECT_TRUE(to.x == 61 && to.y == 51 && status == -77 && error == -77);
        } else {
            EXPECT_EQ(0, status);
        }
        return result;
    });
}
