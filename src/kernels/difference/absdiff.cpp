#include "kernels/difference/absdiff.h"

#include <bit>
#include <type_traits>

#include "frame/vector.h"

namespace lum::kernels {
namespace {

template <class T> T difference(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(a > b ? a - b : b - a);
    else
        return std::bit_cast<float>(std::bit_cast<unsigned>(a - b) & 0x7FFFFFFFU);
}

// One of the two differences that saturate at zero is always 0, so their sum is the absolute difference.
__m128i differences(Lum8u, __m128i a, __m128i b) {
    return _mm_add_epi8(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a));
}

__m128i differences(Lum16u, __m128i a, __m128i b) {
    return _mm_add_epi16(_mm_subs_epu16(a, b), _mm_subs_epu16(b, a));
}

__m128i differences(Lum32f, __m128i a, __m128i b) {
    const __m128 difference = _mm_sub_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b));
    return _mm_and_si128(_mm_castps_si128(difference), _mm_set1_epi32(0x7FFFFFFF));
}

/// The second operand of a difference: the rows of an image.
template <class T> struct SecondImage {
    Image<const T> image;

    struct Row {
        const T* elements;
        T at(int x) const { return elements[x]; }
        template <Access access> __m128i vector(int x) const { return loadVector<access>(elements + x); }
        __m128i half(int x) const { return loadHalf(elements + x); }
        void prefetch(int x) const { _mm_prefetch(reinterpret_cast<const char*>(elements + x), _MM_HINT_T0); }
    };
    Row row(int y) const { return {image.row(y)}; }
};

/// The second operand of a difference: one constant.
template <class T> struct Constant {
    T value;
    __m128i lanes;

    explicit Constant(T constant) : value(constant) {
        if constexpr (std::is_same_v<T, Lum8u>)
            lanes = _mm_set1_epi8(static_cast<char>(constant));
        else if constexpr (std::is_same_v<T, Lum16u>)
            lanes = _mm_set1_epi16(static_cast<short>(constant));
        else
            lanes = _mm_castps_si128(_mm_set1_ps(constant));
    }
    T at(int) const { return value; }
    template <Access> __m128i vector(int) const { return lanes; }
    __m128i half(int) const { return lanes; }
    const Constant& row(int) const { return *this; }
};

template <class T, class Second>
void scalarRows(Image<const T> src, const Second& second, Image<T> dst, LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        const T* a = src.row(y);
        const auto& b = second.row(y);
        T* result = dst.row(y);
        for (int x = 0; x < size.width; ++x) result[x] = difference(a[x], b.at(x));
    }
}

template <Access access, Stores stores, class T, class Second>
void vectorRows(Image<const T> src, const Second& second, Image<T> dst, LumSize size) {
    constexpr int lanes = 16 / sizeof(T);
    // The one kernel of the family that asks for its sources ahead of the turn.
    constexpr bool prefetched = std::is_same_v<Second, SecondImage<Lum32f>> && stores == Stores::ordinary;

    for (int y = 0; y < size.height; ++y) {
        const T* a = src.row(y);
        const auto& b = second.row(y);
        T* result = dst.row(y);
        int x = 0;
        // 32 bytes a turn
        for (; x <= size.width - 2 * lanes; x += 2 * lanes) {
            if constexpr (prefetched) {
                _mm_prefetch(reinterpret_cast<const char*>(a + x + 2 * lanes), _MM_HINT_T0);
                b.prefetch(x + 2 * lanes);
            }
            const __m128i low = differences(T{}, loadVector<access>(a + x), b.template vector<access>(x));
            const __m128i high =
                differences(T{}, loadVector<access>(a + x + lanes), b.template vector<access>(x + lanes));
            storeVector<access, stores>(result + x, low);
            storeVector<access, stores>(result + x + lanes, high);
        }
        // 8 bytes a turn
        if constexpr (std::is_integral_v<T>) {
            for (; x <= size.width - lanes / 2; x += lanes / 2)
                storeHalf(result + x, differences(T{}, loadHalf(a + x), b.half(x)));
        }
        // tail, one element a turn
        for (; x < size.width; ++x) result[x] = difference(a[x], b.at(x));
    }
    if constexpr (stores == Stores::streaming) storeFence();
}

template <class T, class Second>
void chosenRows(bool aligned, Image<const T> src, const Second& second, Image<T> dst, LumSize size,
                Stores stores) {
    // Elements of one byte have one kind of store only.
    if constexpr (sizeof(T) > 1) {
        if (stores == Stores::streaming) {
            if (aligned)
                vectorRows<Access::aligned, Stores::streaming>(src, second, dst, size);
            else
                vectorRows<Access::unaligned, Stores::streaming>(src, second, dst, size);
            return;
        }
    }
    if (aligned)
        vectorRows<Access::aligned, Stores::ordinary>(src, second, dst, size);
    else
        vectorRows<Access::unaligned, Stores::ordinary>(src, second, dst, size);
}

} // namespace

template <class T> void absDiffScalar(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size) {
    scalarRows(src1, SecondImage<T>{src2}, dst, size);
}

template <class T>
void absDiff(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size, Stores stores) {
    chosenRows(alignedForVectors(src1, src2, dst), src1, SecondImage<T>{src2}, dst, size, stores);
}

template <class T> void absDiffCScalar(Image<const T> src, T constant, Image<T> dst, LumSize size) {
    scalarRows(src, Constant<T>(constant), dst, size);
}

template <class T> void absDiffC(Image<const T> src, T constant, Image<T> dst, LumSize size, Stores stores) {
    chosenRows(alignedForVectors(src, dst), src, Constant<T>(constant), dst, size, stores);
}

template decltype(absDiffScalar<Lum8u>) absDiffScalar<Lum8u>;
template decltype(absDiffScalar<Lum16u>) absDiffScalar<Lum16u>;
template decltype(absDiffScalar<Lum32f>) absDiffScalar<Lum32f>;
template decltype(absDiff<Lum8u>) absDiff<Lum8u>;
template decltype(absDiff<Lum16u>) absDiff<Lum16u>;
template decltype(absDiff<Lum32f>) absDiff<Lum32f>;
template decltype(absDiffCScalar<Lum8u>) absDiffCScalar<Lum8u>;
template decltype(absDiffCScalar<Lum16u>) absDiffCScalar<Lum16u>;
template decltype(absDiffCScalar<Lum32f>) absDiffCScalar<Lum32f>;
template decltype(absDiffC<Lum8u>) absDiffC<Lum8u>;
template decltype(absDiffC<Lum16u>) absDiffC<Lum16u>;
template decltype(absDiffC<Lum32f>) absDiffC<Lum32f>;

} // namespace lum::kernels
