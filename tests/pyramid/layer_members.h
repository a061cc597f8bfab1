// The members of the layer operators by element type and channels, and objects that hold one of their states.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace support {

/// The functions of one member with plain sizes, whatever the member takes.
template <class StateType, class ElementType, class TapType, int channelCount> struct LayerMember {
    using State = StateType;
    using T = ElementType;
    using Tap = TapType;
    static constexpr int channels = channelCount;
};

#define LAYER_MEMBER(name, direction, suffix, T, Tap, channels)                                              \
    struct name : LayerMember<LumPyramidLayer##direction##State, T, Tap, channels> {                         \
        static constexpr auto getSize = lumiPyramidLayer##direction##GetSize_##suffix;                       \
        static constexpr auto init = lumiPyramidLayer##direction##Init_##suffix;                             \
        static constexpr auto run = lumiPyramidLayer##direction##_##suffix;                                  \
    }
LAYER_MEMBER(Down8uC1, Down, 8u_C1R, Lum8u, Lum16s, 1);
LAYER_MEMBER(Down8uC3, Down, 8u_C3R, Lum8u, Lum16s, 3);
LAYER_MEMBER(Down16uC1, Down, 16u_C1R, Lum16u, Lum16s, 1);
LAYER_MEMBER(Down16uC3, Down, 16u_C3R, Lum16u, Lum16s, 3);
LAYER_MEMBER(Down32fC1, Down, 32f_C1R, Lum32f, Lum32f, 1);
LAYER_MEMBER(Down32fC3, Down, 32f_C3R, Lum32f, Lum32f, 3);
LAYER_MEMBER(Up8uC1, Up, 8u_C1R, Lum8u, Lum16s, 1);
LAYER_MEMBER(Up8uC3, Up, 8u_C3R, Lum8u, Lum16s, 3);
LAYER_MEMBER(Up16uC1, Up, 16u_C1R, Lum16u, Lum16s, 1);
LAYER_MEMBER(Up16uC3, Up, 16u_C3R, Lum16u, Lum16s, 3);
LAYER_MEMBER(Up32fC1, Up, 32f_C1R, Lum32f, Lum32f, 1);
LAYER_MEMBER(Up32fC3, Up, 32f_C3R, Lum32f, Lum32f, 3);
#undef LAYER_MEMBER

constexpr LumSizeL wide(LumSize size) { return {size.width, size.height}; }

#define WIDE_LAYER_MEMBER(name, direction)                                                                   \
    struct name : LayerMember<LumPyramidLayer##direction##State, Lum32f, Lum32f, 1> {                        \
        static LumStatus getSize(LumSize srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,             \
                                 Lum32s* bufferSize) {                                                       \
            return lumiPyramidLayer##direction##GetSize_32f_C1R_L(wide(srcRoi), rate, kernelSize, stateSize, \
                                                                  bufferSize);                               \
        }                                                                                                    \
        static LumStatus init(State** state, LumSize srcRoi, Lum32f rate, const Lum32f* kernel,              \
                              int kernelSize, int mode, Lum8u* memory, Lum8u* buffer) {                      \
            return lumiPyramidLayer##direction##Init_32f_C1R_L(state, wide(srcRoi), rate, kernel,            \
                                                               kernelSize, mode, memory, buffer);            \
        }                                                                                                    \
        static LumStatus run(const Lum32f* src, int srcStep, LumSize srcRoi, Lum32f* dst, int dstStep,       \
                             LumSize dstRoi, State* state) {                                                 \
            return lumiPyramidLayer##direction##_32f_C1R_L(src, srcStep, wide(srcRoi), dst, dstStep,         \
                                                           wide(dstRoi), state);                             \
        }                                                                                                    \
    }
WIDE_LAYER_MEMBER(Down32fC1L, Down);
WIDE_LAYER_MEMBER(Up32fC1L, Up);
#undef WIDE_LAYER_MEMBER

using DownMembers =
    testing::Types<Down8uC1, Down8uC3, Down16uC1, Down16uC3, Down32fC1, Down32fC3, Down32fC1L>;
using UpMembers = testing::Types<Up8uC1, Up8uC3, Up16uC1, Up16uC3, Up32fC1, Up32fC3, Up32fC1L>;

/// A state in memory of exactly the size that the query reports, at any address, filled with a pattern before.
template <class Member> class LayerState {
  public:
    using Tap = typename Member::Tap;

    LayerState(LumSize srcRoi, float rate, const std::vector<Tap>& kernel, std::size_t spare = 1) {
        Lum32s stateSize = 0;
        Lum32s bufferSize = 0;
        const int taps = static_cast<int>(kernel.size());
        EXPECT_EQ(lumStatusOk, Member::getSize(srcRoi, rate, taps, &stateSize, &bufferSize));
        EXPECT_EQ(8 * std::max(srcRoi.width, srcRoi.height), bufferSize);
        memory_.emplace(stateSize, Guard::after, spare);
        GuardedBlock buffer(bufferSize, Guard::after, spare);
        status_ = Member::init(&state_, srcRoi, rate, kernel.data(), taps, 2, memory_->template as<Lum8u>(),
                               buffer.as<Lum8u>());
    }

    LumStatus status() const { return status_; }
    typename Member::State* get() const { return state_; }
    std::size_t size() const { return memory_->size(); }

  private:
    std::optional<GuardedBlock> memory_;
    typename Member::State* state_ = nullptr;
    LumStatus status_ = lumStatusBadValue;
};

/// Any padding, any alignment, and the guard at either end.
template <class Member> Placement anyPlacement(std::mt19937& engine) {
    return {.channels = Member::channels,
            .padding = static_cast<int>(engine() % 3 * sizeof(typename Member::T)),
            .offset = static_cast<int>(engine() % 33),
            .guard = engine() % 2 == 0 ? Guard::after : Guard::before};
}

/// Symmetric, with weights of either sign and a sum that is not 0.
template <class Tap> std::vector<Tap> randomKernel(int taps, std::mt19937& engine) {
    std::vector<Tap> kernel(taps);
    for (int i = 0; i <= taps / 2; ++i)
        kernel[i] = kernel[taps - 1 - i] = static_cast<Tap>(static_cast<int>(engine() % 40) - 5);
    kernel[taps / 2] += static_cast<Tap>(taps * 10);
    return kernel;
}

template <class Member, class T = typename Member::T>
LumStatus runLayer(const GuardedImage<T>& src, GuardedImage<T>& dst, const LayerState<Member>& state) {
    return Member::run(src.data(), src.step(), src.size(), dst.data(), dst.step(), dst.size(), state.get());
}

} // namespace support
