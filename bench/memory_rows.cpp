// What the memory alone costs: a plain reading of as many bytes as a member touches. A member that touches N planes of
// bytes, read or written, takes at least about the time of read_N_planes, however little it computes: AbsDiff_8u
// touches 3 of them, Add_8u32f 5, Add_8u32f_mask and AddProduct_8u32f 6, AbsDiff_32f 12.
#include "rows.h"

#include <emmintrin.h>
#include <memory>
#include <string>

namespace bench {
namespace {

/// A load a cache line: any more would measure the loads.
void readLines(const Lum8u* bytes, int count) {
    __m128i sum = _mm_setzero_si128();
    for (int i = 0; i < count; i += 64)
        sum = _mm_add_epi8(sum, _mm_load_si128(reinterpret_cast<const __m128i*>(bytes + i)));
    volatile int result = _mm_cvtsi128_si32(sum);
    static_cast<void>(result);
}

Setup readingOf(int planes) {
    return [planes] {
        auto bytes = std::make_shared<Plane<Lum8u>>(planes);
        return [bytes] { readLines(bytes->data, bytes->count()); };
    };
}

const RowFile file([] {
    for (int planes : {2, 3, 5, 6, 12}) row("read_" + std::to_string(planes) + "_planes", readingOf(planes));
});

} // namespace

} // namespace bench
