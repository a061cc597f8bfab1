// The object of the corner search, and what it must hold.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/feature/fast.h"
#include "lumcv/fast.h"

namespace lum {

/// The record of an object. With orientation its tables follow: the sines, the cosines, and bins in a radian.
struct FastRecord {
    std::uint32_t tag;
    LumDataType dataType;
    Lum32s channels;
    Lum32s width;
    Lum32s height;
    Lum32s circleRadius;
    Lum32s arcLength;
    Lum32s orientationBins;
    Lum32s flags;
    Lum32s unused;
    Lum32f threshold;
    Lum32s intThreshold;
    /// For the reader of an object only; runs go by the radius.
    const LumPoint* circle;
};

static_assert(offsetof(FastRecord, width) == 12 && offsetof(FastRecord, circleRadius) == 20 &&
              offsetof(FastRecord, orientationBins) == 28 && offsetof(FastRecord, flags) == 32 &&
              offsetof(FastRecord, threshold) == 40 && offsetof(FastRecord, intThreshold) == 44 &&
              offsetof(FastRecord, circle) == 48);
static_assert(sizeof(void*) != 4 || sizeof(FastRecord) == 52);

/// A copy of what an object holds, since an object that was moved may lie at any address.
class FastObject {
  public:
    /// Reads a block of caller memory that an Init has filled; of any other it reads no more than an object has.
    explicit FastObject(const LumFastNSpec* spec);

    /// What a call tests, in this order; scores is that of the call.
    LumStatus check(const Lum8u* scores) const;

    const FastRecord& record() const { return record_; }
    bool has(int flag) const { return (record_.flags & flag) != 0; }
    /// With orientation, and only for an object that has passed its tests.
    kernels::CircleDirections directions() const;

  private:
    FastRecord record_;
    const unsigned char* tables_;
};

LumStatus fastNGetSize(LumSize srcSize, int circleRadius, int arcLength, int orientationBins, int flags,
                       LumDataType dataType, int channels, Lum32s* size);
LumStatus fastNInit(LumSize srcSize, int circleRadius, int arcLength, int orientationBins, int flags,
                    Lum32f threshold, LumDataType dataType, int channels, LumFastNSpec* spec);

} // namespace lum
