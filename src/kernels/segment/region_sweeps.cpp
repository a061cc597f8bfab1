#include "kernels/segment/region_sweeps.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/arena.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

constexpr int wordBits = 64;
/// Words of a vector: what is searched follows what has grown closely.
constexpr int N = vectorBytes / static_cast<int>(sizeof(PixelBits));
using Words = Block<PixelBits, N>;
/// Words that cost what a search of a row costs besides its words.
constexpr int wordsOfSearch = 16;

std::ptrdiff_t wordsOf(int width) {
    return roundedUp((std::ptrdiff_t{width} + wordBits - 1) / wordBits, std::ptrdiff_t{N});
}

LUM_LANE bool anyBit(Words a) { return any(bitsAs<std::uint8_t>(a) != zeros<std::uint8_t, N * 8>()); }

/// How many bits of each word are set.
LUM_LANE Words onesOf(Words a) {
    const auto every = [](std::uint8_t byte)
                           LUM_INLINED { return bitsAs<PixelBits>(broadcast<N * 8>(byte)); };
    // Sums of neighbouring bits, pairs and fours, then bytes.
    a = a - (a >> 1 & every(0x55));
    a = (a & every(0x33)) + (a >> 2 & every(0x33));
    a = (a + (a >> 4)) & every(0x0F);
    return byteSums(bitsAs<std::uint8_t>(a));
}

/// The runs of members, within each word, that hold one of the seeds, which are members.
LUM_LANE Words grown(Words seeds, Words members) {
    // A sum carries each seed up to the end of its run.
    const Words upwards = andNot(members + seeds, members) | seeds;
    // Down by 1, 2, 4, ... pixels of nothing but members.
    Words all = upwards | (members & (upwards >> 1));
    const auto down = [&](int distance) LUM_INLINED {
        members = members & (members >> (distance / 2));
        all = all | (members & (all >> distance));
    };
    down(2);
    down(4);
    down(8);
    down(16);
    down(32);
    return all;
}

} // namespace

std::uint64_t RegionSweeps::bytes(LumSize size) {
    const auto words = static_cast<std::uint64_t>(wordsOf(size.width));
    const auto height = static_cast<std::uint64_t>(size.height);
    return (2 * words * height + words + height + 1) * sizeof(PixelBits) + height * sizeof(RowState) +
           alignof(PixelBits) - 1;
}

RegionSweeps::RegionSweeps(unsigned char* block, LumSize size, bool corners, MemberRows members)
    : size_(size),
      corners_(corners),
      source_(members),
      words_(wordsOf(size.width)),
      // Eight sweeps over everything.
      allowed_(std::int64_t{8} * (words_ + wordsOfSearch) * size.height) {
    const auto words = static_cast<std::size_t>(words_);
    const auto height = static_cast<std::size_t>(size.height);
    Arena arena(block);
    members_ = arena.align(alignof(PixelBits)).allocate<PixelBits>(words * height);
    PixelBits* cleared = arena.allocate<PixelBits>((words + 1) * height + 1);
    std::memset(cleared, 0, ((words + 1) * height + 1) * sizeof(PixelBits));
    region_ = cleared + 1;
    columns_ = arena.allocate<PixelBits>(words);
    states_ = arena.allocate<RowState>(height);
    std::fill_n(states_, height, RowState{none, none, none});
}

void RegionSweeps::add(int y, int left, int right) {
    PixelBits* words = row(y);
    const int first = left / wordBits;
    const int last = right / wordBits;
    for (int i = first; i <= last; ++i) {
        PixelBits bits = ~PixelBits{0};
        if (i == first) bits &= ~PixelBits{0} << left % wordBits;
        if (i == last) bits &= ~PixelBits{0} >> (wordBits - 1 - right % wordBits);
        words[i] |= bits;
    }
    markGrown(y, {first, last + 1});
}

bool RegionSweeps::grow() {
    // A sweep upwards leaves nothing to search upwards from.
    while (!down_.empty())
        if (!sweep<1>() || !sweep<-1>()) return false;
    return true;
}

/// From each row that has grown to the next one, which may grow by that.
template <int step> bool RegionSweeps::sweep() {
    Range& rows = step > 0 ? down_ : up_;
    for (int y = step > 0 ? rows.begin : rows.end - 1; rows.begin <= y && y < rows.end; y += step) {
        Range& range = step > 0 ? states_[y].toDown : states_[y].toUp;
        if (range.empty()) continue;
        if (0 <= y + step && y + step < size_.height) {
            allowed_ -= range.end - range.begin + wordsOfSearch;
            if (allowed_ < 0) return false;
            if (corners_)
                search<true>(y, y + step, range);
            else
                search<false>(y, y + step, range);
        }
        range = none;
    }
    rows = none;
    return true;
}

/// The members of a row that touch the given words of a neighbouring row.
template <bool corners> void RegionSweeps::search(int from, int to, Range range) {
    const PixelBits* beside = row(from);
    PixelBits* words = row(to);
    if constexpr (corners) {
        if (range.begin > 0 && (beside[range.begin] & 1) != 0) --range.begin;
        if (range.end < words_ && beside[range.end - 1] >> (wordBits - 1) != 0) ++range.end;
    }
    const PixelBits* members = membersOf(to, range);
    Range changed = none;
    // one vector of words per iteration
    for (int i = range.begin & -N; i < range.end; i += N) {
        Words touching = load<N>(beside + i);
        if constexpr (corners)
            touching = touching | touching << 1 | touching >> 1 | load<N>(beside + i - 1) >> (wordBits - 1) |
                       load<N>(beside + i + 1) << (wordBits - 1);
        const Words possible = load<N>(members + i);
        const Words known = load<N>(words + i);
        const Words seeds = andNot(known, touching & possible);
        if (!anyBit(seeds)) continue;
        store(known | grown(seeds, possible), words + i);
        changed.widen(i, i + N);
    }
    if (changed.empty()) return;
    growAcrossWords(to, changed);
    markGrown(to, changed);
}

/// Runs that go on in the next word or the one before.
void RegionSweeps::growAcrossWords(int y, Range& grown) {
    constexpr PixelBits lowest = 1;
    constexpr PixelBits highest = lowest << (wordBits - 1);
    PixelBits* words = row(y);
    const Range searched = grown;
    const PixelBits* known = membersOf(y, searched);
    const auto upwards = [&](int i) {
        for (; i < words_ && (words[i - 1] & ~(words[i] << (wordBits - 1)) & highest) != 0; ++i) {
            const PixelBits members = membersOf(y, {i, i + 1})[i];
            if ((members & lowest) == 0) return;
            words[i] |= members & ~(members + 1);
            grown.end = std::max(grown.end, i + 1);
        }
    };
    const auto downwards = [&](int i) {
        for (; i >= 0 && (words[i + 1] & ~(words[i] >> (wordBits - 1)) & lowest) != 0; --i) {
            const PixelBits members = membersOf(y, {i, i + 1})[i];
            if ((members & highest) == 0) return;
            words[i] |= ~PixelBits{0} << (wordBits - std::countl_one(members));
            grown.begin = std::min(grown.begin, i);
        }
    };
    for (int i = searched.begin; i < searched.end; i += N) {
        const Words before = load<N>(words + i - 1) >> (wordBits - 1);
        const Words after = load<N>(words + i + 1) << (wordBits - 1);
        if (!anyBit(andNot(load<N>(words + i), (before | after) & load<N>(known + i)))) continue;
        for (int k = i; k < i + N; ++k) {
            upwards(k);
            downwards(k);
        }
    }
    upwards(searched.end);
    downwards(searched.begin - 1);
}

/// The members of a row, of which those in the vectors that a range touches are known.
const PixelBits* RegionSweeps::membersOf(int y, Range range) {
    PixelBits* words = members_ + y * words_;
    Range& known = states_[y].read;
    if (range.begin < known.begin || range.end > known.end) {
        const int begin = std::min(range.begin & -N, known.begin);
        const int end = std::max(roundedUp(range.end, N), known.end);
        if (known.empty()) known = {begin, begin};
        const auto read = [&](int first, int last) {
            if (first < last) source_.read(source_.image, y, first, last, words + first);
        };
        read(begin, std::min(known.begin, end));
        read(std::max(known.end, begin), end);
        known = {begin, end};
    }
    return words;
}

void RegionSweeps::markGrown(int y, Range range) {
    states_[y].toDown.widen(range.begin, range.end);
    states_[y].toUp.widen(range.begin, range.end);
    down_.widen(y, y + 1);
    up_.widen(y, y + 1);
    rows_.widen(y, y + 1);
    used_.widen(range.begin, range.end);
}

GrownRegion RegionSweeps::region() const {
    std::fill_n(columns_, words_, PixelBits{0});
    Words pixels = zeros<PixelBits, N>();
    Words runs = zeros<PixelBits, N>();
    for (int y = rows_.begin; y < rows_.end; ++y) {
        const PixelBits* words = row(y);
        for (int i = used_.begin & -N; i < used_.end; i += N) {
            const Words bits = load<N>(words + i);
            const Words before = bits << 1 | load<N>(words + i - 1) >> (wordBits - 1);
            pixels = pixels + onesOf(bits);
            runs = runs + onesOf(andNot(before, bits));
            store(load<N>(columns_ + i) | bits, columns_ + i);
        }
    }
    std::ptrdiff_t first = 0;
    while (columns_[first] == 0) ++first;
    std::ptrdiff_t last = words_ - 1;
    while (columns_[last] == 0) --last;
    return {.area = static_cast<std::int64_t>(sumOf(pixels)),
            .runs = static_cast<std::int64_t>(sumOf(runs)),
            .top = rows_.begin,
            .bottom = rows_.end - 1,
            .left = static_cast<int>(first * wordBits) + std::countr_zero(columns_[first]),
            .right = static_cast<int>(last * wordBits) + wordBits - 1 - std::countl_zero(columns_[last])};
}

} // namespace lum::kernels
