// The floating-point state is the caller's: every call leaves it as it found it, and works with any. Where a call meets an
// exception that the caller has unmasked, the caller's handler runs. What a call leaves in the upper halves of wide registers
// would slow down a caller's code that knows the lower halves only: they are clear.
#include <cpuid.h>
#include <csignal>
#include <fnmatch.h>
#include <ucontext.h>

#include "library/contract/calls.h"
#include "library/contract/rows.h"
#include "support/control_word.h"

using namespace contract;

namespace {

// The parts of MXCSR.
constexpr unsigned flags = 0x3F;
constexpr unsigned denormalsAreZero = 0x40;
constexpr unsigned masks = 0x1F80;
constexpr unsigned flushToZero = 0x8000;

unsigned state = masks;
bool trapped = false;
std::string changed;

unsigned short controlWord() {
    unsigned short word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

/// An exception that the caller has unmasked: masks all of them where it happened, and goes on.
void maskExceptions(int, siginfo_t*, void* context) {
    auto* registers = static_cast<ucontext_t*>(context)->uc_mcontext.fpregs;
#ifdef __x86_64__
    registers->mxcsr |= masks;
    registers->mxcsr &= ~flags;
#else
    // After the registers of the old layout and six words.
    auto* mxcsr = reinterpret_cast<unsigned*>(reinterpret_cast<char*>(registers) + 136);
    *mxcsr = (*mxcsr | masks) & ~flags;
#endif
    trapped = true;
}

LumStatus callInState(const Call& call) {
    const unsigned short ownWord = controlWord();
    trapped = false;
    LumStatus status = lumStatusOk;
    unsigned changedBits = 0;
    {
        const support::ControlWord callers(state);
        status = call();
        changedBits = callers.changed();
    }
    const unsigned mine = trapped ? flags | masks : flags;
    if ((changedBits & ~mine) != 0 || ownWord != controlWord()) changed = call.callee->name;
    return status;
}

/// Whether the processor tells which parts of its registers are in use.
bool tellsPartsInUse() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    constexpr unsigned avxEnabled = 1U << 27 | 1U << 28;
    constexpr unsigned tells = 1U << 2;
    return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & avxEnabled) == avxEnabled &&
           __get_cpuid_count(0xD, 1, &a, &b, &c, &d) != 0 && (a & tells) != 0;
}

LumStatus callAndLookAtUpperHalves(const Call& call) {
    asm volatile("vzeroupper");
    const LumStatus status = call();
    // The upper halves of 32-byte registers, and those of 64-byte ones.
    constexpr unsigned upperHalves = 0x44;
    unsigned inUse = 0;
    unsigned high = 0;
    asm volatile("xgetbv" : "=a"(inUse), "=d"(high) : "c"(1));
    if ((inUse & upperHalves) != 0) changed = call.callee->name;
    return status;
}

/// The exports that add, multiply or divide floats: their results are stated for rounding to nearest, and follow the
/// caller's mode. All others, and the removal of lens distortion, give the same in any mode.
const std::vector<const char*> followTheMode = {
    "lumiAddProduct_*",
    "lumiAddSquare_16u*",
    "lumiAddWeighted_*",
    "lumiCopySubpix*",
    "lumiEigenValsVecs*",
    "lumiMinEigenVal*",
    "lumiFGMM*",
    "lumiFastMarching_*",
    "lumiFastNInit",
    "lumiFilterColumnPipeline_*",
    "lumiFilterRowBorderPipeline_*",
    "lumiFilterGaussian*",
    "lumiFilterLaplacianBorder_32f*",
    "lumiFilterLowpassBorder_32f*",
    "lumiFilterSobelCrossBorder_32f*",
    "lumiGenSobelKernel_32f",
    "lumiGradientColorToGray_*",
    "lumiHarrisCorner_*",
    "lumiHoughLine_*",
    "lumiHoughProbLineInit_*",
    "lumiMean_*",
    "lumiMorph*hat*_32f*",
    "lumiNorm*",
    "lumiOpticalFlowPyrLK_*",
    "lumiPyramidInit*",
    "lumiPyramidLayerDown_*",
    "lumiPyramidLayerUp_*",
    "lumiRectStdDev_*",
    "lumiTiltedRectStdDev_*",
    "lumiTrueDistanceTransform_*",
};

class CallerState : public FamilyTest {
  protected:
    /// Runs the family's rows in each of the states.
    static void expectSame(const std::vector<unsigned>& states, const std::vector<const char*>& excepted) {
        const std::vector<digest::Case> regions = {{{33, 18}, 8, 4}};
        struct sigaction action = {};
        action.sa_sigaction = maskExceptions;
        action.sa_flags = SA_SIGINFO;
        sigaction(SIGFPE, &action, nullptr);
        for (const auto& [name, run] : family().rows) {
            const std::uint64_t expected = digestOf(run, regions);
            observe(callInState);
            changed.clear();
            for (const unsigned one : states) {
                state = one;
                const std::uint64_t result = digestOf(run, regions);
                bool isExcepted = false;
                for (const char* pattern : excepted) isExcepted |= fnmatch(pattern, name.c_str(), 0) == 0;
                if (!isExcepted) {
                    EXPECT_EQ(expected, result) << name << " in state " << std::hex << one;
                }
            }
            observe(nullptr);
            EXPECT_EQ("", changed) << " has left another state";
        }
    }
};

} // namespace

TEST_P(CallerState, IsKeptWithAnyMasksAndAnyTreatmentOfDenormals) {
    std::vector<unsigned> states;
    for (const unsigned denormals : {0U, flushToZero, denormalsAreZero, flushToZero | denormalsAreZero})
        for (const unsigned masked : {masks, 0U, masks & ~0x80U, masks & ~0x100U, masks & ~0x200U,
                                      masks & ~0x400U, masks & ~0x800U, masks & ~0x1000U})
            states.push_back(denormals | masked);
    expectSame(states, {});
}

TEST_P(CallerState, IsKeptWithAnyRounding) {
    std::vector<unsigned> states;
    for (const unsigned rounding : {0x2000U, 0x4000U, 0x6000U})
        for (const unsigned masked : {masks, 0U}) states.push_back(rounding | masked);
    expectSame(states, followTheMode);
}

TEST_P(CallerState, HasNothingInUpperHalvesOfRegisters) {
    if (!tellsPartsInUse()) GTEST_SKIP() << "the processor does not tell which registers are in use";
    for (const auto& [name, run] : family().rows) {
        changed.clear();
        observe(callAndLookAtUpperHalves);
        digestOf(run, {{{200, 40}, 8, 4}});
        observe(nullptr);
        EXPECT_EQ("", changed) << " has left something there";
    }
}

FOR_EVERY_FAMILY(CallerState);
