// Integer sums that saturate are exact, so the chain along a row is taken in any grouping: within a block the shortest
// chains over one, two, four and eight pixels, and then the chain that enters the block.
#include "kernels/distance/chamfer_integers.h"

#include "frame/lanes_reduce.h"
#include "kernels/distance/chamfer_rows.h"
#include "kernels/distance/chamfer_steps.h"

namespace lum::kernels {
namespace {

/// The chains along a row, in blocks of 16 bytes: every chain step takes the last elements of one.
template <ChamferSteps steps, class T, int direction> class RowChains {
  public:
    static constexpr int count = 16 / static_cast<int>(sizeof(T));
    using Distances = Block<T, count>;

    explicit RowChains(const ChamferMetric<T>& metric) : metric_(metric) {
        // What lies outside the block is farther away than any pixel.
        for (int i = 0; i < doublings; ++i) {
            const int distance = 1 << i;
            within_[i] =
                Move([&](int e) { return e - direction * distance; },
                     [&](int e) { return numberOf(e) < distance ? farthest<T> : lengthOf(distance); });
        }
        for (int i = 0; i < entries; ++i)
            entering_[i] = Move([i](int) { return lastElement - direction * i; },
                                [&](int e) { return lengthOf(numberOf(e) + 1 + i); });
    }

    /// The distances of a block with the chains along their row; `before` is the block handled before it.
    LUM_LANE Distances operator()(Distances distances, Distances before) const {
#pragma GCC unroll 4
        for (int i = 0; i < doublings; ++i) distances = within_[i].shorter(distances, distances);
#pragma GCC unroll 2
        for (int i = 0; i < entries; ++i) distances = entering_[i].shorter(distances, before);
        return distances;
    }

    /// A block that ends, in the direction of the pass, with the two pixels before x.
    Distances blockBefore(const T* row, int x) const {
        T elements[count] = {};
        for (int i = 0; i < entries; ++i)
            elements[lastElement - direction * i] = row[x - direction * (i + 1)];
        return load<count>(elements);
    }

  private:
    static constexpr int doublings = sizeof(T) == 1 ? 4 : 3;
    /// Steps of two pixels enter a block from two pixels before it.
    static constexpr int entries = steps == ChamferSteps::window ? 2 : 1;

    static constexpr int lastElement = direction == 1 ? count - 1 : 0;
    /// Elements counted in the direction of the pass.
    static constexpr int numberOf(int element) { return direction == 1 ? element : count - 1 - element; }

    /// Elements taken to other places, and the lengths of their chains.
    struct Move {
        Block<Lum8u, 16> indices;
        Distances lengths;

        Move() = default;
        template <class From, class Length> Move(From from, Length length) {
            constexpr int size = static_cast<int>(sizeof(T));
            Lum8u bytes[16];
            T chains[count];
            for (int i = 0; i < 16; ++i)
                bytes[i] = static_cast<Lum8u>((from(i / size) * size + i % size) & 15);
            for (int e = 0; e < count; ++e) chains[e] = length(e);
            indices = load<16>(bytes);
            lengths = load<count>(chains);
        }

        LUM_LANE Distances shorter(Distances distances, Distances from) const {
            const auto moved = bitsAs<T>(shuffleUnits(bitsAs<Lum8u>(from), indices));
            return min(distances, addSaturated(moved, lengths));
        }
    };

    /// The length of the shortest chain over a number of pixels of a row.
    T lengthOf(int pixels) const {
        const int single = metric_.axial;
        const int length = steps == ChamferSteps::window
                               ? pixels / 2 * metric_.doubleAxial + pixels % 2 * single
                               : pixels * single;
        return static_cast<T>(std::min<int>(length, farthest<T>));
    }

    const ChamferMetric<T>& metric_;
    Move within_[doublings];
    Move entering_[entries];
};

/// One pass. A direction of 1 is the first pass, which reads the picture, -1 the second.
template <ChamferSteps steps, class T, int direction>
void pass(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    constexpr bool first = direction == 1;
    const RowChains<steps, T, direction> chains(metric);
    constexpr int count = decltype(chains)::count;
    const ChamferLengths<T, count> lengths(metric);
    const StepList<T> list(metric);
    StepList<T> listOfLastRow = list;
    if (metric.doubleStepsInLastRow) listOfLastRow.add(-2, 0, metric.doubleAxial);

    for (int i = 0; i < size.height; ++i) {
        const int y = first ? i : size.height - 1 - i;
        const Lum8u* picture = src.row(y);
        T* row = dst.row(y);
        const RowsBefore<T> before = rowsBefore(dst, size.height, y, direction);
        const bool pixelByPixel = metric.doubleStepsInLastRow && y == size.height - 1;
        // Pixels from the side where the pass begins up to, but without, one: what blocks need before them, and the tail,
        // scalar.
        int x = first ? 0 : size.width - 1;
        const auto pixels = [&](int end) {
            for (; x != end; x += direction) {
                const T start = !first ? row[x] : picture[x] == 0 ? T{0} : farthest<T>;
                row[x] =
                    shortestChain(dst, size, x, y, direction, pixelByPixel ? listOfLastRow : list, start);
            }
        };
        const int blocks = pixelByPixel ? 0 : (size.width - 2 * chamferReach) / count;
        if (blocks > 0) {
            pixels(first ? chamferReach : size.width - 1 - chamferReach);
            auto last = chains.blockBefore(row, x);
            for (int block = 0; block < blocks; ++block, x += direction * count) {
                const int left = first ? x : x - count + 1;
                const auto start =
                    first ? startingDistances<T, count>(picture + left) : load<count>(row + left);
                last = chains(overRowsBefore<steps>(start, before, left, lengths), last);
                store(last, row + left);
            }
        }
        pixels(first ? size.width : -1);
    }
}

template <ChamferSteps steps, class T>
void passes(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    pass<steps, T, 1>(src, dst, size, metric);
    pass<steps, T, -1>(src, dst, size, metric);
}

} // namespace

template <class T>
void chamferIntegers(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    switch (metric.steps) {
    case ChamferSteps::axial:
        return passes<ChamferSteps::axial>(src, dst, size, metric);
    case ChamferSteps::eight:
        return passes<ChamferSteps::eight>(src, dst, size, metric);
    case ChamferSteps::knight:
        return passes<ChamferSteps::knight>(src, dst, size, metric);
    case ChamferSteps::window:
        return passes<ChamferSteps::window>(src, dst, size, metric);
    }
}

template void chamferIntegers(Image<const Lum8u>, Image<Lum8u>, LumSize, const ChamferMetric<Lum8u>&);
template void chamferIntegers(Image<const Lum8u>, Image<Lum16u>, LumSize, const ChamferMetric<Lum16u>&);

} // namespace lum::kernels
