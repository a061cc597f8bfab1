#include "feature/fast_spec.h"

#include <cmath>
#include <cstring>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/convert.h"

namespace lum {
namespace {

using kernels::CircleDirections;
using kernels::perimeterOf;

constexpr std::uint32_t fastTag = 0x4B617390;
constexpr std::uintptr_t recordAlignment = 8;
constexpr int knownFlags = lumFastNOrientation | lumFastNSuppression | lumFastNCorners | lumFastNScore;

LumStatus checkType(LumDataType dataType, int channels) {
    return firstFailure(errorIf(dataType != lumType8u, lumStatusDataTypeError),
                        errorIf(channels != 1, lumStatusCountError));
}

LumStatus checkFlags(int flags, int orientationBins) {
    const bool suppressesWithoutScore = (flags & lumFastNSuppression) != 0 && (flags & lumFastNScore) == 0;
    const bool hasNoDirections =
        (flags & lumFastNOrientation) != 0 && (orientationBins < 1 || orientationBins > 64);
    return firstFailure(
        errorIf((flags & lumFastNCorners) == 0 || (flags & ~knownFlags) != 0 || suppressesWithoutScore,
                lumStatusBadArgument),
        errorIf(hasNoDirections, lumStatusOutOfRange));
}

LumStatus checkCircle(int circleRadius, int arcLength) {
    const int perimeter = perimeterOf(circleRadius);
    return firstFailure(errorIf(perimeter == 0, lumStatusBadArgument),
                        errorIf(arcLength <= perimeter / 2 || arcLength > perimeter, lumStatusOutOfRange));
}

/// The pieces of an object in a block.
struct FastPieces {
    unsigned char* record;
    unsigned char* sines;
    unsigned char* cosines;
    unsigned char* binScale;

    FastPieces(Arena& arena, int perimeter)
        // The distance to the record takes a byte.
        : record(arena.skip(1).align(recordAlignment).allocate<unsigned char>(sizeof(FastRecord))),
          sines(arena.allocate<unsigned char>(perimeter * sizeof(Lum32f))),
          cosines(arena.allocate<unsigned char>(perimeter * sizeof(Lum32f))),
          binScale(arena.allocate<unsigned char>(sizeof(Lum32f))) {}
};

void put(unsigned char* place, Lum32f value) { std::memcpy(place, &value, sizeof value); }

/// Sines and cosines of the circle's positions, each rounded once.
void fillDirections(const FastPieces& pieces, int perimeter, int bins) {
    constexpr double twoPi = 6.28318530717958647692;
    constexpr double perRadian = 0.15915494309189535;
    for (int k = 0; k < perimeter; ++k) {
        const double angle = k * twoPi / perimeter;
        put(pieces.sines + k * sizeof(Lum32f), nearestFloat(std::sin(angle)));
        put(pieces.cosines + k * sizeof(Lum32f), nearestFloat(std::cos(angle)));
    }
    put(pieces.binScale, nearestFloat(bins * perRadian));
}

} // namespace

FastObject::FastObject(const LumFastNSpec* spec) : record_{}, tables_(nullptr) {
    const auto* block = reinterpret_cast<const unsigned char*>(spec);
    if (block[0] < 1 || block[0] > recordAlignment) return;
    std::memcpy(&record_, block + block[0], sizeof record_);
    tables_ = block + block[0] + sizeof record_;
}

LumStatus FastObject::check(const Lum8u* scores) const {
    const FastRecord& r = record_;
    return firstFailure(errorIf(r.tag != fastTag, lumStatusContextMismatch),
                        checkType(r.dataType, r.channels), checkSize(LumSize{r.width, r.height}),
                        checkFlags(r.flags, r.orientationBins),
                        errorIf(has(lumFastNScore) && scores == nullptr, lumStatusNullPointer),
                        checkCircle(r.circleRadius, r.arcLength));
}

CircleDirections FastObject::directions() const {
    CircleDirections directions;
    const std::size_t bytes = static_cast<std::size_t>(perimeterOf(record_.circleRadius)) * sizeof(Lum32f);
    std::memcpy(directions.sines, tables_, bytes);
    std::memcpy(directions.cosines, tables_ + bytes, bytes);
    std::memcpy(&directions.binScale, tables_ + 2 * bytes, sizeof directions.binScale);
    directions.bins = record_.orientationBins;
    return directions;
}

LumStatus fastNGetSize(LumSize srcSize, int circleRadius, int arcLength, int orientationBins, int flags,
                       LumDataType dataType, int channels, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(srcSize), checkType(dataType, channels),
                              checkFlags(flags, orientationBins), checkCircle(circleRadius, arcLength)))
        return s;
    // A block at a multiple of 8 needs the most.
    Arena arena(nullptr);
    FastPieces pieces(arena, perimeterOf(circleRadius));
    *size = static_cast<Lum32s>(arena.used());
    return lumStatusOk;
}

LumStatus fastNInit(LumSize srcSize, int circleRadius, int arcLength, int orientationBins, int flags,
                    Lum32f threshold, LumDataType dataType, int channels, LumFastNSpec* spec) {
    if (auto s = firstFailure(checkNotNull(spec), checkSize(srcSize),
                              errorIf(threshold < 0, lumStatusThresholdError), checkType(dataType, channels),
                              checkFlags(flags, orientationBins), checkCircle(circleRadius, arcLength)))
        return s;
    const int perimeter = perimeterOf(circleRadius);
    Arena arena(spec);
    const FastPieces pieces(arena, perimeter);
    auto* block = reinterpret_cast<unsigned char*>(spec);
    block[0] = static_cast<unsigned char>(pieces.record - block);
    auto* record = reinterpret_cast<FastRecord*>(pieces.record);
    record->tag = fastTag;
    record->dataType = dataType;
    record->channels = channels;
    record->width = srcSize.width;
    record->height = srcSize.height;
    record->circleRadius = circleRadius;
    record->arcLength = arcLength;
    record->orientationBins = orientationBins;
    record->flags = flags;
    record->threshold = threshold;
    record->intThreshold = truncatedTo32s(static_cast<double>(threshold));
    record->circle = kernels::circleOf(circleRadius);
    if ((flags & lumFastNOrientation) != 0) fillDirections(pieces, perimeter, orientationBins);
    return lumStatusOk;
}

} // namespace lum
