#include "filter/separable_spec.h"

#include <cstring>

namespace lum {
namespace {

template <class... Types> constexpr LumStatus typeOtherThan(LumDataType type, Types... accepted) {
    return errorIf(((type != accepted) && ...), lumStatusDataTypeError);
}

constexpr LumStatus channelsOtherThanOneThreeFour(int numChannels) {
    return errorIf(numChannels != 1 && numChannels != 3 && numChannels != 4, lumStatusChannelCountError);
}

constexpr unsigned elementBytes(LumDataType kernelType) {
    return kernelType == lumType16s ? sizeof(Lum16s) : sizeof(Lum32f);
}

/// The fields and the two kernels. `divisor` and `scale` are those of integer kernels.
template <class K>
void writeSpec(const K* kernelX, const K* kernelY, LumSize kernelSize, int tag, int divisor, int scale,
               int numChannels, LumFilterSeparableSpec* block) {
    const auto width = static_cast<std::size_t>(kernelSize.width);
    const auto height = static_cast<std::size_t>(kernelSize.height);
    Arena arena(block);
    auto* spec = arena.align(separableSpecAlignment).allocate<SeparableSpec>();
    K* rowKernel = arena.skip(separableKernelOffset - sizeof(SeparableSpec)).allocate<K>(width);
    K* columnKernel = arena.allocate<K>(height);
    *spec = {.kernelTag = tag,
             .kernelWidth = kernelSize.width,
             .kernelHeight = kernelSize.height,
             .divisor = divisor,
             .scale = scale,
             .rowKernel = rowKernel,
             .secondRowKernel = nullptr,
             .columnKernel = columnKernel,
             .secondColumnKernel = nullptr,
             .channels = numChannels};
    std::memcpy(rowKernel, kernelX, width * sizeof(K));
    std::memcpy(columnKernel, kernelY, height * sizeof(K));
}

} // namespace

LumStatus separableBufferSizeL(LumSizeL roiSize, LumSizeL kernelSize, LumDataType dataType,
                               LumDataType kernelType, int numChannels, Lum32s* size) {
    if (auto s = firstFailure(
            checkSize(roiSize, kernelSize), sizeAboveIndices(roiSize, kernelSize), checkNotNull(size),
            typeOtherThan(dataType, lumType8u, lumType16u, lumType16s, lumType32f),
            typeOtherThan(kernelType, lumType16s, lumType32f), channelsOtherThanOneThreeFour(numChannels)))
        return s;
    const auto width = static_cast<unsigned>(kernelSize.width);
    const auto height = static_cast<unsigned>(kernelSize.height);
    const unsigned rowOfRing = static_cast<unsigned>(roiSize.width) + width - 1;
    const unsigned floats =
        (elementBytes(kernelType) * width + rowOfRing * height) * static_cast<unsigned>(numChannels);
    const auto pointers = static_cast<unsigned>(height * sizeof(float*));
    *size = static_cast<Lum32s>(floats * 4 + pointers + 64);
    return lumStatusOk;
}

LumStatus separableBufferSize(LumSize roiSize, LumSize kernelSize, LumDataType dataType,
                              LumDataType kernelType, int numChannels, Lum32s* size) {
    if (auto s = checkNotNull(size)) return s;
    return separableBufferSizeL(widened(roiSize), widened(kernelSize), dataType, kernelType, numChannels,
                                size);
}

LumStatus separableSpecSizeL(LumSizeL kernelSize, LumDataType kernelType, int numChannels, Lum32s* size) {
    if (auto s = firstFailure(checkSize(kernelSize), sizeAboveIndices(kernelSize), checkNotNull(size),
                              typeOtherThan(kernelType, lumType16s, lumType32f),
                              channelsOtherThanOneThreeFour(numChannels)))
        return s;
    const unsigned taps = static_cast<unsigned>(kernelSize.width) + static_cast<unsigned>(kernelSize.height);
    constexpr unsigned fieldsAndSlack = separableKernelOffset + separableSpecAlignment - 1;
    *size = static_cast<Lum32s>(taps * elementBytes(kernelType) + fieldsAndSlack);
    return lumStatusOk;
}

LumStatus separableSpecSize(LumSize kernelSize, LumDataType kernelType, int numChannels, Lum32s* size) {
    if (auto s = checkNotNull(size)) return s;
    return separableSpecSizeL(widened(kernelSize), kernelType, numChannels, size);
}

LumStatus separableInit16sL(const Lum16s* kernelX, const Lum16s* kernelY, LumSizeL kernelSize, int divisor,
                            int scale, LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec) {
    if (auto s = firstFailure(checkNotNull(kernelX, kernelY, spec), checkSize(kernelSize),
                              sizeAboveIndices(kernelSize), typeOtherThan(dataType, lumType16s, lumType8u),
                              channelsOtherThanOneThreeFour(numChannels),
                              errorIf(divisor == 0, lumStatusDivisorError)))
        return s;
    writeSpec(kernelX, kernelY, narrowed(kernelSize), 0, divisor, scale, numChannels, spec);
    return lumStatusOk;
}

LumStatus separableInit16s(const Lum16s* kernelX, const Lum16s* kernelY, LumSize kernelSize, int divisor,
                           int scale, LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec) {
    return separableInit16sL(kernelX, kernelY, widened(kernelSize), divisor, scale, dataType, numChannels,
                             spec);
}

LumStatus separableInit32fL(const Lum32f* kernelX, const Lum32f* kernelY, LumSizeL kernelSize,
                            LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec) {
    if (auto s = firstFailure(checkNotNull(kernelX, kernelY, spec), checkSize(kernelSize),
                              sizeAboveIndices(kernelSize),
                              typeOtherThan(dataType, lumType8u, lumType16u, lumType32f),
                              channelsOtherThanOneThreeFour(numChannels)))
        return s;
    writeSpec(kernelX, kernelY, narrowed(kernelSize), 1, 1, 0, numChannels, spec);
    return lumStatusOk;
}

LumStatus separableInit32f(const Lum32f* kernelX, const Lum32f* kernelY, LumSize kernelSize,
                           LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec) {
    return separableInit32fL(kernelX, kernelY, widened(kernelSize), dataType, numChannels, spec);
}

} // namespace lum
