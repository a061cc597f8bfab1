#include "kernels/difference/absdiff.h"

#include <bit>
#include <type_traits>

#include "frame/instances.h"
#include "frame/lanes.h"

namespace lum::kernels {
namespace {

template <class T> T difference(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(a > b ? a - b : b - a);
    else
        return std::bit_cast<float>(std::bit_cast<unsigned>(a - b) & 0x7FFFFFFFU);
}

/// The second operand of a difference: the rows of an image.
template <class T> struct SecondImage {
    Image<const T> image;

    struct Row {
        const T* elements;
        T at(int x) const { return elements[x]; }
        template <int count> Block<T, count> block(int x) const { return load<count>(elements + x); }
    };
    Row row(int y) const { return {image.row(y)}; }
};

/// The second operand of a difference: one constant.
template <class T> struct Constant {
    T value;

    T at(int) const { return value; }
    template <int count> Block<T, count> block(int) const { return broadcast<count>(value); }
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

template <Stores stores, class T, class Second>
void vectorRows(Image<const T> src, const Second& second, Image<T> dst, LumSize size) {
    constexpr int large = 64 / sizeof(T);
    constexpr int small = 16 / sizeof(T);
    for (int y = 0; y < size.height; ++y) {
        const T* a = src.row(y);
        const auto b = second.row(y);
        T* result = dst.row(y);
        int x = 0;
        // 64 bytes per iteration
        for (; x <= size.width - large; x += large)
            store<stores>(absDiff(load<large>(a + x), b.template block<large>(x)), result + x);
        // 16 bytes per iteration
        for (; x <= size.width - small; x += small)
            store(absDiff(load<small>(a + x), b.template block<small>(x)), result + x);
        if constexpr (sizeof(T) == 1) {
            // 8 bytes, once at most
            constexpr int half = small / 2;
            if (x <= size.width - half) {
                store(absDiff(load<half>(a + x), b.template block<half>(x)), result + x);
                x += half;
            }
        }
        // tail: scalar, one element at a time
        for (; x < size.width; ++x) result[x] = difference(a[x], b.at(x));
    }
    if constexpr (stores == Stores::streaming) storeFence();
}

/// Rows are streamed where all of them begin on a multiple of a vector.
template <class T, class Second>
void chosenRows(Image<const T> src, const Second& second, Image<T> dst, LumSize size, Stores stores) {
    // Elements of one byte have one kind of store only.
    if constexpr (sizeof(T) > 1) {
        if (stores == Stores::streaming && isStreamable(dst))
            return vectorRows<Stores::streaming>(src, second, dst, size);
    }
    vectorRows<Stores::ordinary>(src, second, dst, size);
}

} // namespace

template <class T> void absDiffScalar(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size) {
    scalarRows(src1, SecondImage<T>{src2}, dst, size);
}

template <class T>
void absDiff(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size, Stores stores) {
    chosenRows(src1, SecondImage<T>{src2}, dst, size, stores);
}

template <class T> void absDiffCScalar(Image<const T> src, T constant, Image<T> dst, LumSize size) {
    scalarRows(src, Constant<T>{constant}, dst, size);
}

template <class T> void absDiffC(Image<const T> src, T constant, Image<T> dst, LumSize size, Stores stores) {
    chosenRows(src, Constant<T>{constant}, dst, size, stores);
}

LUM_INSTANCES(absDiffScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(absDiff, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(absDiffCScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(absDiffC, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum::kernels
