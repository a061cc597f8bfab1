#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr LumDataType dataTypes[] = {lumType8u, lumType16u, lumType16s, lumType32f};

/// A block of exactly `bytes` bytes at any alignment: `after` bytes further lie between it and the guard.
class Block {
  public:
    Block(int bytes, int after) : bytes_(bytes), block_(static_cast<std::size_t>(bytes + after)) {}

    unsigned char* data() { return block_.as<unsigned char>(); }
    template <class Spec> Spec* as() { return block_.as<Spec>(); }
    bool untouched() const { return untouchedFrom(0); }
    bool untouchedAfter() const { return untouchedFrom(bytes_); }

    Lum32s field(int byte) {
        Lum32s value = 0;
        std::memcpy(&value, data() + byte, sizeof value);
        return value;
    }
    /// Elements at the first boundary at or after a byte.
    template <class T> std::vector<T> elements(int byte, int boundary, int count) {
        const auto address = reinterpret_cast<std::uintptr_t>(data()) + byte;
        const auto rounded = (address + boundary - 1) / boundary * boundary;
        const auto* place = reinterpret_cast<const T*>(rounded);
        EXPECT_LE(reinterpret_cast<const unsigned char*>(place + count), data() + bytes_);
        return std::vector<T>(place, place + count);
    }

  private:
    bool untouchedFrom(int first) const {
        auto* bytes = const_cast<GuardedBlock&>(block_).as<unsigned char>();
        for (std::size_t i = first; i < block_.size(); ++i)
            if (bytes[i] != 0xA5) return false;
        return true;
    }

    int bytes_;
    GuardedBlock block_;
};

/// The arguments of an Init, all of them good.
struct InitCall {
    LumSize size{8, 8};
    int K = 3;
    float sigma = 1.0F;
    int border = lumBorderReplicate;
    LumDataType type = lumType8u;
    int channels = 1;
};

LumStatus initCore(const InitCall& c, LumFilterGaussianSpecL* spec, Lum8u* scratch) {
    return lumiFilterGaussianInit_L({c.size.width, c.size.height}, c.K, c.sigma, c.border, c.type, c.channels,
                                    spec, scratch);
}
LumStatus initFront(const InitCall& c, LumFilterGaussianSpec* spec, Lum8u* scratch) {
    return lumiFilterGaussianInit(c.size, c.K, c.sigma, c.border, c.type, c.channels, spec, scratch);
}

/// Byte offsets of the fields that both objects begin with.
enum Field { kernelSizeField = 0, weightsField = 4, dataTypeField = 8, borderField = 12, shiftField = 16 };

int coreBytes(int K) { return 4 * ((K + 1) / 2) + 128; }
int frontBytes(int K, LumDataType type) {
    return type == lumType32f ? 32 + 16 * ((K + 3) / 4) : 36 + 8 * ((K + 3) / 4);
}

/// exp of the exponent in single precision.
float weight(float r, float sigma) {
    const float square = r * r;
    const float twice = sigma + sigma;
    const float denominator = twice * sigma;
    const float exponent = -square / denominator;
    // exp(-1000) is 0, as is that of everything below, which not every C runtime can do.
    const double power = std::exp(std::max(static_cast<double>(exponent), -1000.0));
    return static_cast<float>(power);
}

std::vector<float> halfKernel(int K, float sigma) {
    const int h = K / 2;
    std::vector<float> half;
    float sum = 0;
    for (int i = 0; i < h; ++i) {
        const float w = weight(static_cast<float>(h - i), sigma);
        half.push_back(w);
        const float both = w + w;
        sum = sum + both;
    }
    sum = sum + 1.0F;
    half.push_back(1.0F);
    const float scale = 1.0F / sum;
    for (float& w : half) w = w * scale;
    return half;
}

template <class T> std::vector<T> fullKernel(int K, float sigma, float one) {
    std::vector<float> weights;
    float sum = 0;
    for (int i = 0; i < K; ++i) {
        weights.push_back(weight(static_cast<float>(i - K / 2), sigma));
        sum = sum + weights.back();
    }
    std::vector<T> full;
    for (float w : weights) {
        const float share = w / sum;
        if constexpr (std::is_integral_v<T>) {
            const float scaled = share * one;
            full.push_back(static_cast<T>(static_cast<int>(static_cast<double>(scaled) + 0.5)));
        } else {
            full.push_back(share);
        }
    }
    return full;
}

std::vector<float> halfKernelOf(int K, float sigma) {
    Block spec(coreBytes(K), 0);
    GuardedBlock scratch(64);
    EXPECT_STATUS(lumStatusOk,
                  initCore({.K = K, .sigma = sigma}, spec.as<LumFilterGaussianSpecL>(), scratch.as<Lum8u>()));
    return spec.elements<float>(20, 64, (K + 1) / 2);
}

/// The weights of three taps that belong to the front object.
template <class T> std::vector<T> fullKernelOf(LumDataType type, float sigma) {
    Block spec(frontBytes(3, type) + coreBytes(3), 0);
    GuardedBlock scratch(64);
    EXPECT_STATUS(lumStatusOk, initFront({.sigma = sigma, .border = lumBorderMirror, .type = type},
                                         spec.as<LumFilterGaussianSpec>(), scratch.as<Lum8u>()));
    return spec.elements<T>(20, 16, 3);
}

} // namespace

TEST(FilterGaussianInit, FixedPointKernelsByHand) {
    // exp(-1/2) = 0.606530...: shares of 0.274068..., 0.451862...
    EXPECT_EQ((std::vector<Lum16s>{1123, 1851, 1123}), fullKernelOf<Lum16s>(lumType8u, 1.0F));
    EXPECT_EQ((std::vector<Lum16s>{8981, 14807, 8981}), fullKernelOf<Lum16s>(lumType16s, 1.0F));
    EXPECT_EQ((std::vector<Lum16s>{8981, 14807, 8981}), fullKernelOf<Lum16s>(lumType16u, 1.0F));
    EXPECT_EQ((std::vector<Lum16s>{0, 4096, 0}), fullKernelOf<Lum16s>(lumType8u, 0.1F));
    // A share of 1 is 32768, which wraps in 16s.
    EXPECT_EQ((std::vector<Lum16s>{0, -32768, 0}), fullKernelOf<Lum16s>(lumType16s, 0.1F));
    EXPECT_EQ((std::vector<Lum16s>{0, -32768, 0}), fullKernelOf<Lum16s>(lumType16u, 0.1F));
}

TEST(FilterGaussianInit_L, LaysTheCoreObjectAtAnyAlignment) {
    for (int K : {3, 5, 7, 9, 15, 33})
        for (int alignment = 0; alignment < 64; ++alignment)
            for (LumDataType type : dataTypes) {
                Block spec(coreBytes(K), alignment);
                GuardedBlock scratch(64);
                ASSERT_EQ(lumStatusOk, initCore({{640, 480}, K, 1.3F, lumBorderMirror, type, 3},
                                                spec.as<LumFilterGaussianSpecL>(), scratch.as<Lum8u>()));
                EXPECT_EQ(K, spec.field(kernelSizeField));
                EXPECT_EQ(64, spec.field(weightsField));
                EXPECT_EQ(type, spec.field(dataTypeField));
                EXPECT_EQ(static_cast<Lum32s>(0xA5A5A5A5), spec.field(borderField))
                    << "the reserved word is not written";
                EXPECT_EQ(0, spec.field(shiftField));
                EXPECT_TRUE(sameBits(halfKernel(K, 1.3F), spec.elements<float>(20, 64, (K + 1) / 2)));
                EXPECT_TRUE(spec.untouchedAfter());
                for (std::size_t i = 0; i < scratch.size(); ++i) ASSERT_EQ(0xA5, scratch.as<Lum8u>()[i]);
            }
}

// Of 8.16 the exponential would round differently in single precision.
TEST(FilterGaussianInit_L, HalfKernelOfManySigmas) {
    for (int K = 3; K <= 41; K += 2)
        for (float sigma : {0.01F, 0.3F, 0.5F, 0.85F, 1.0F, 1.7F, 3.0F, 8.16F, 10.0F, 1000.0F, 1e30F})
            EXPECT_TRUE(sameBits(halfKernel(K, sigma), halfKernelOf(K, sigma))) << K << " " << sigma;
}

TEST(FilterGaussianInit_L, ThreeTapsAreTheClosedForm) {
    for (double sigma : {0.4, 0.7, 1.0, 2.5, 8.0}) {
        const auto g = halfKernelOf(3, static_cast<float>(sigma));
        const double e = std::exp(-1 / (2 * sigma * sigma));
        EXPECT_NEAR(1 / (1 + 2 * e), g[1], 1e-6);
        EXPECT_NEAR(e / (1 + 2 * e), g[0], 1e-6);
    }
}

TEST(FilterGaussianInit_L, VerySmallSigmaLeavesTheCentreAlone) {
    for (float sigma : {0.01F, 1e-30F, std::numeric_limits<float>::denorm_min()})
        for (int K : {3, 5, 9}) {
            const auto g = halfKernelOf(K, sigma);
            for (int i = 0; i < K / 2; ++i) EXPECT_EQ(0.0F, g[i]);
            EXPECT_EQ(1.0F, g[K / 2]);
        }
}

TEST(FilterGaussianInit_L, TestsInOrder) {
    Block block(coreBytes(3), 0);
    auto* spec = block.as<LumFilterGaussianSpecL>();
    Lum8u scratch[64] = {};
    const InitCall wrong{{0, 0}, 4, 0, 0, 2, 2};
    EXPECT_REFUSED(lumStatusNullPointer, block, initCore(wrong, nullptr, scratch));
    EXPECT_REFUSED(lumStatusNullPointer, block, initCore(wrong, spec, nullptr));
    // Each row puts right what the row before it was refused for.
    const std::pair<LumStatus, InitCall> table[] = {
        {lumStatusSizeError, {{0, 5}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{5, 0}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{-1, 5}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{5, -1}, 4, 0, 0, 2, 2}},
        {lumStatusBadArgument, {{8, 8}, 4, 0, 0, 2, 2}},
        {lumStatusBadArgument, {{8, 8}, 1, 0, 0, 2, 2}},
        {lumStatusDataTypeError, {{8, 8}, 3, 0, 0, lumType32s, 2}},
        {lumStatusChannelCountError, {{8, 8}, 3, 0, 0, lumType32f, 4}},
        {lumStatusBadArgument, {{8, 8}, 3, 0, 0, lumType32f, 3}},
        {lumStatusBadArgument, {{8, 8}, 3, -1.0F, 0, lumType32f, 3}},
        {lumStatusBadArgument, {{8, 8}, 3, -0.0F, 0, lumType32f, 3}},
        {lumStatusBorderError, {{8, 8}, 3, 1.0F, 0, lumType32f, 3}},
    };
    for (const auto& [expected, call] : table) EXPECT_REFUSED(expected, block, initCore(call, spec, scratch));
}

TEST(FilterGaussianInit_L, SigmaOfNaNPassesAndLeavesNoWeightANumber) {
    for (float weight : halfKernelOf(5, std::numeric_limits<float>::quiet_NaN()))
        EXPECT_TRUE(std::isnan(weight));
}

TEST(FilterGaussianInit, TestsInOrder) {
    Block block(frontBytes(3, lumType32f) + coreBytes(3), 0);
    auto* spec = block.as<LumFilterGaussianSpec>();
    Lum8u scratch[64] = {};
    const InitCall wrong{{0, 0}, 4, 0, 0, 2, 2};
    EXPECT_REFUSED(lumStatusNullPointer, block, initFront(wrong, nullptr, scratch));
    EXPECT_REFUSED(lumStatusNullPointer, block, initFront(wrong, spec, nullptr));
    // Each row puts right what the row before it was refused for.
    const std::pair<LumStatus, InitCall> table[] = {
        {lumStatusSizeError, {{0, 5}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{5, 0}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{-1, 5}, 4, 0, 0, 2, 2}},
        {lumStatusSizeError, {{5, -1}, 4, 0, 0, 2, 2}},
        {lumStatusBadArgument, {{8, 8}, 4, 0, 0, 2, 2}},
        {lumStatusDataTypeError, {{8, 8}, 3, 0, 0, lumType64f, 2}},
        {lumStatusChannelCountError, {{8, 8}, 3, 0, 0, lumType32f, 2}},
        {lumStatusBadArgument, {{8, 8}, 3, 0, 0, lumType32f, 3}},
        {lumStatusBorderError, {{8, 8}, 3, 1.0F, 0, lumType32f, 3}},
    };
    for (const auto& [expected, call] : table)
        EXPECT_REFUSED(expected, block, initFront(call, spec, scratch));
}

TEST(FilterGaussianInit, WithoutAKindOnlyTheFourFlagsAlonePass) {
    Lum8u scratch[64] = {};
    for (int border = -300; border < 600; ++border) {
        const int kind = border & 15;
        const bool inByte = border >= 0 && border <= 255;
        const bool hasKind =
            kind == lumBorderReplicate || kind == lumBorderMirror || kind == lumBorderConstant;
        const bool front = inByte && (hasKind || border == 0xF0);
        const bool core = inByte && (hasKind || border >= 0xF0);
        Block plain(frontBytes(3, lumType8u) + coreBytes(3), 0);
        Block wide(coreBytes(3), 0);
        EXPECT_EQ(static_cast<LumStatus>(front ? lumStatusOk : lumStatusBorderError),
                  initFront({.border = border}, plain.as<LumFilterGaussianSpec>(), scratch))
            << border;
        EXPECT_EQ(static_cast<LumStatus>(core ? lumStatusOk : lumStatusBorderError),
                  initCore({.border = border}, wide.as<LumFilterGaussianSpecL>(), scratch))
            << border;
        EXPECT_EQ(front, !plain.untouched());
        EXPECT_EQ(core, !wide.untouched());
    }
}

TEST(FilterGaussianInit, LaysBothObjectsAtAnyAlignment) {
    const float sigma = 1.1F;
    for (int K : {3, 5, 7, 9, 11, 15})
        for (int alignment = 0; alignment < 64; ++alignment)
            for (LumDataType type : dataTypes) {
                const int front = frontBytes(K, type);
                Block spec(front + coreBytes(K), alignment);
                GuardedBlock scratch(64);
                ASSERT_EQ(lumStatusOk, initFront({{640, 480}, K, sigma, lumBorderConstant, type, 1},
                                                 spec.as<LumFilterGaussianSpec>(), scratch.as<Lum8u>()));
                EXPECT_EQ(K, spec.field(kernelSizeField));
                EXPECT_EQ(20, spec.field(weightsField));
                EXPECT_EQ(type, spec.field(dataTypeField));
                EXPECT_EQ(lumBorderConstant, spec.field(borderField));
                switch (type) {
                case lumType8u:
                    EXPECT_EQ(12, spec.field(shiftField));
                    EXPECT_EQ(fullKernel<Lum16s>(K, sigma, 4096), spec.elements<Lum16s>(20, 16, K));
                    break;
                case lumType16s:
                    EXPECT_EQ(15, spec.field(shiftField));
                    EXPECT_EQ(fullKernel<Lum16s>(K, sigma, 32768), spec.elements<Lum16s>(20, 16, K));
                    break;
                case lumType16u:
                    EXPECT_EQ(15, spec.field(shiftField));
                    EXPECT_EQ(fullKernel<Lum16u>(K, sigma, 32768), spec.elements<Lum16u>(20, 16, K));
                    break;
                default:
                    EXPECT_EQ(0, spec.field(shiftField));
                    EXPECT_TRUE(sameBits(fullKernel<float>(K, sigma, 1), spec.elements<float>(20, 16, K)));
                }
                EXPECT_EQ(K, spec.field(front + kernelSizeField));
                EXPECT_EQ(64, spec.field(front + weightsField));
                EXPECT_EQ(type, spec.field(front + dataTypeField));
                EXPECT_EQ(0, spec.field(front + shiftField));
                EXPECT_TRUE(
                    sameBits(halfKernel(K, sigma), spec.elements<float>(front + 20, 64, (K + 1) / 2)));
                EXPECT_TRUE(spec.untouchedAfter());
                for (std::size_t i = 0; i < scratch.size(); ++i) ASSERT_EQ(0xA5, scratch.as<Lum8u>()[i]);
            }
}

TEST(FilterGaussianInit, SigmaWhoseSquareVanishesLeavesTheCentreAlone) {
    for (float sigma : {1e-22F, 1e-30F, std::numeric_limits<float>::denorm_min()}) {
        EXPECT_EQ((std::vector<float>{0, 1}), halfKernelOf(3, sigma));
        EXPECT_EQ((std::vector<Lum16s>{0, 4096, 0}), fullKernelOf<Lum16s>(lumType8u, sigma));
        EXPECT_EQ((std::vector<Lum16u>{0, 32768, 0}), fullKernelOf<Lum16u>(lumType16u, sigma));
        EXPECT_EQ((std::vector<Lum16s>{0, -32768, 0}), fullKernelOf<Lum16s>(lumType16s, sigma));
        EXPECT_EQ((std::vector<float>{0, 1, 0}), fullKernelOf<float>(lumType32f, sigma));
    }
}
