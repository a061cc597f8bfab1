// Every operation on blocks against the same operation on one element at a time, for blocks below, at and above the
// vectors of every build.
#include "frame/lanes.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "frame/lanes_convert.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "support/guarded_image.h"

using namespace lum;

namespace {

template <class T, int N> using Elements = std::array<T, N>;

std::mt19937& random() {
    static std::mt19937 generator(20211);
    return generator;
}

/// Any bits in integers; in floating point values of a few magnitudes, with zeros, infinities and NaN.
template <class T> T anyElement() {
    if constexpr (std::is_integral_v<T>) {
        static constexpr T corners[] = {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), 0, 1};
        const auto bits = static_cast<std::uint64_t>(random()()) << 32 | random()();
        return bits % 8 < 4 ? corners[bits % 4] : static_cast<T>(bits >> 8);
    } else {
        static constexpr T infinity = std::numeric_limits<T>::infinity();
        static constexpr T corners[] = {
            0, -T{0}, infinity, -infinity, std::numeric_limits<T>::quiet_NaN(), T(0.5), T(1.5), T(-2.5)};
        const unsigned bits = random()();
        if (bits % 4 == 0) return corners[(bits >> 2) % 8];
        return std::ldexp(static_cast<T>(static_cast<int>(random()())), static_cast<int>(bits % 48) - 40);
    }
}

template <class T, int N> Elements<T, N> anyElements() {
    Elements<T, N> elements;
    for (T& element : elements) element = anyElement<T>();
    return elements;
}

template <class T, int N> Elements<T, N> elementsOf(Block<T, N> block) {
    Elements<T, N> elements;
    store(block, elements.data());
    return elements;
}

template <class T> bool sameBits(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return a == b;
    else // of a NaN the payload is not part of it
        return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

template <class T, std::size_t N>
void expectSame(const std::array<T, N>& expected, const std::array<T, N>& actual, const char* what) {
    for (std::size_t i = 0; i < N; ++i)
        ASSERT_TRUE(sameBits(expected[i], actual[i]))
            << what << ", element " << i << " of " << N << ": " << +expected[i] << " " << +actual[i];
}

template <class T, int N, class OnBlocks, class OnElements>
void expectBinary(OnBlocks onBlocks, OnElements onElements, const char* what) {
    for (int round = 0; round < 200; ++round) {
        const auto a = anyElements<T, N>();
        const auto b = anyElements<T, N>();
        const auto actual = elementsOf(onBlocks(load<N>(a.data()), load<N>(b.data())));
        std::remove_const_t<decltype(actual)> expected;
        for (int i = 0; i < N; ++i) expected[i] = onElements(a[i], b[i]);
        ASSERT_NO_FATAL_FAILURE(expectSame(expected, actual, what));
    }
}

/// `call` for blocks of 16, 32, 64 and 128 bytes, and of 8 where the elements are integers.
template <class T, class Call> void onAllSizes(Call call) {
    constexpr int perVector = 16 / static_cast<int>(sizeof(T));
    if constexpr (std::is_integral_v<T> && sizeof(T) < 8) call.template operator()<T, perVector / 2>();
    call.template operator()<T, perVector>();
    call.template operator()<T, 2 * perVector>();
    call.template operator()<T, 4 * perVector>();
    call.template operator()<T, 8 * perVector>();
}

template <class Call> void onAllTypes(Call call) {
    onAllSizes<std::uint8_t>(call);
    onAllSizes<std::int8_t>(call);
    onAllSizes<std::uint16_t>(call);
    onAllSizes<std::int16_t>(call);
    onAllSizes<std::uint32_t>(call);
    onAllSizes<std::int32_t>(call);
    onAllSizes<float>(call);
    onAllSizes<double>(call);
}

template <class T> T wrapped(std::int64_t value) { return static_cast<T>(static_cast<std::uint64_t>(value)); }
template <class T> T clamped(std::int64_t value) {
    return static_cast<T>(
        std::clamp<std::int64_t>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

} // namespace

TEST(Lanes, ArithmeticIsThatOfElements) {
    onAllTypes([]<class T, int N> {
        if constexpr (std::is_integral_v<T>) {
            expectBinary<T, N>([](auto a, auto b) { return a + b; },
                               [](T a, T b) { return wrapped<T>(std::int64_t{a} + b); }, "+");
            expectBinary<T, N>([](auto a, auto b) { return a - b; },
                               [](T a, T b) { return wrapped<T>(std::int64_t{a} - b); }, "-");
            if constexpr (sizeof(T) > 1)
                expectBinary<T, N>(
                    [](auto a, auto b) { return a * b; },
                    [](T a, T b) { return static_cast<T>(std::uint64_t(a) * std::uint64_t(b)); }, "*");
        } else {
            expectBinary<T, N>([](auto a, auto b) { return a + b; }, [](T a, T b) { return a + b; }, "+");
            expectBinary<T, N>([](auto a, auto b) { return a - b; }, [](T a, T b) { return a - b; }, "-");
            expectBinary<T, N>([](auto a, auto b) { return a * b; }, [](T a, T b) { return a * b; }, "*");
            expectBinary<T, N>([](auto a, auto b) { return a / b; }, [](T a, T b) { return a / b; }, "/");
            expectBinary<T, N>([](auto a, auto) { return sqrt(a); }, [](T a, T) { return std::sqrt(a); },
                               "sqrt");
        }
    });
}

TEST(Lanes, BitsAreThoseOfElements) {
    onAllTypes([]<class T, int N> {
        if constexpr (std::is_integral_v<T>) {
            expectBinary<T, N>([](auto a, auto b) { return a & b; }, [](T a, T b) { return T(a & b); }, "&");
            expectBinary<T, N>([](auto a, auto b) { return a | b; }, [](T a, T b) { return T(a | b); }, "|");
            expectBinary<T, N>([](auto a, auto b) { return a ^ b; }, [](T a, T b) { return T(a ^ b); }, "^");
            expectBinary<T, N>([](auto a, auto b) { return andNot(a, b); },
                               [](T a, T b) { return T(~a & b); }, "andNot");
            expectBinary<T, N>([](auto a, auto) { return ~a; }, [](T a, T) { return T(~a); }, "~");
            expectBinary<T, N>([](auto a, auto) { return a << 3; },
                               [](T a, T) { return static_cast<T>(std::uint64_t(a) << 3); }, "<<");
            expectBinary<T, N>([](auto a, auto) { return a >> 3; }, [](T a, T) { return T(a >> 3); }, ">>");
            // A count that the compiler cannot see.
            const volatile int five = 5;
            expectBinary<T, N>([&](auto a, auto) { return a >> five; }, [](T a, T) { return T(a >> 5); },
                               ">> five");
        }
    });
}

TEST(Lanes, ComparisonsGiveAllBitsOrNone) {
    onAllTypes([]<class T, int N> {
        using M = SignedOf<sizeof(T)>;
        expectBinary<T, N>([](auto a, auto b) { return a == b; },
                           [](T a, T b) { return a == b ? M(-1) : M(0); }, "==");
        expectBinary<T, N>([](auto a, auto b) { return a != b; },
                           [](T a, T b) { return a != b ? M(-1) : M(0); }, "!=");
        expectBinary<T, N>([](auto a, auto b) { return a < b; },
                           [](T a, T b) { return a < b ? M(-1) : M(0); }, "<");
        expectBinary<T, N>([](auto a, auto b) { return a <= b; },
                           [](T a, T b) { return a <= b ? M(-1) : M(0); }, "<=");
        expectBinary<T, N>([](auto a, auto b) { return a > b; },
                           [](T a, T b) { return a > b ? M(-1) : M(0); }, ">");
        expectBinary<T, N>([](auto a, auto b) { return a >= b; },
                           [](T a, T b) { return a >= b ? M(-1) : M(0); }, ">=");
        expectBinary<T, N>([](auto a, auto b) { return select(a < b, b, a); },
                           [](T a, T b) { return a < b ? b : a; }, "select");
    });
}

TEST(Lanes, ExtremesGiveTheSecondOfWhatDoesNotCompare) {
    onAllTypes([]<class T, int N> {
        expectBinary<T, N>([](auto a, auto b) { return min(a, b); }, [](T a, T b) { return a < b ? a : b; },
                           "min");
        expectBinary<T, N>([](auto a, auto b) { return max(a, b); }, [](T a, T b) { return a > b ? a : b; },
                           "max");
    });
}

TEST(Lanes, MagnitudesAndSaturation) {
    onAllTypes([]<class T, int N> {
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) {
            expectBinary<T, N>([](auto a, auto b) { return addSaturated(a, b); },
                               [](T a, T b) { return clamped<T>(a + b); }, "add");
            expectBinary<T, N>([](auto a, auto b) { return subSaturated(a, b); },
                               [](T a, T b) { return clamped<T>(a - b); }, "sub");
        }
        if constexpr (std::is_unsigned_v<T> && sizeof(T) <= 2)
            expectBinary<T, N>([](auto a, auto b) { return absDiff(a, b); },
                               [](T a, T b) { return T(a > b ? a - b : b - a); }, "absDiff");
        if constexpr (std::is_floating_point_v<T>) {
            expectBinary<T, N>([](auto a, auto b) { return absDiff(a, b); },
                               [](T a, T b) { return std::fabs(a - b); }, "absDiff");
            expectBinary<T, N>([](auto a, auto) { return abs(a); }, [](T a, T) { return std::fabs(a); },
                               "abs");
        } else if constexpr (std::is_signed_v<T>) {
            expectBinary<T, N>([](auto a, auto) { return abs(a); },
                               [](T a, T) { return wrapped<T>(a < 0 ? -std::int64_t{a} : a); }, "abs");
        }
    });
}

TEST(Lanes, ProductsOf16Bits) {
    const auto expectPairs = []<class T, int N> {
        if constexpr (sizeof(T) == 2) {
            expectBinary<T, N>([](auto a, auto b) { return multiplyHigh(a, b); },
                               [](T a, T b) { return static_cast<T>((std::int64_t{a} * b) >> 16); },
                               "multiplyHigh");
        }
        if constexpr (std::is_same_v<T, std::int16_t> && N >= 8) {
            const auto a = anyElements<T, N>();
            const auto b = anyElements<T, N>();
            const auto actual = elementsOf(multiplyAddPairs(load<N>(a.data()), load<N>(b.data())));
            for (int i = 0; i < N / 2; ++i)
                ASSERT_EQ(wrapped<std::int32_t>(std::int64_t{a[2 * i]} * b[2 * i] +
                                                std::int64_t{a[2 * i + 1]} * b[2 * i + 1]),
                          actual[i]);
        }
        if constexpr (std::is_same_v<T, std::uint8_t> && N >= 16) {
            const auto a = anyElements<T, N>();
            const auto b = anyElements<std::int8_t, N>();
            const auto actual = elementsOf(multiplyAddPairs(load<N>(a.data()), load<N>(b.data())));
            for (int i = 0; i < N / 2; ++i)
                ASSERT_EQ(clamped<std::int16_t>(a[2 * i] * b[2 * i] + a[2 * i + 1] * b[2 * i + 1]),
                          actual[i]);
        }
    };
    for (int round = 0; round < 20; ++round) onAllTypes(expectPairs);
}

TEST(Lanes, WideningAndNarrowingKeepTheOrder) {
    const auto convert = []<class T, int N, class U> {
        expectBinary<T, N>([](auto a, auto) { return widen<U>(a); }, [](T a, T) { return U(a); }, "widen");
    };
    onAllSizes<std::uint8_t>([&]<class T, int N> {
        convert.template operator()<T, N, std::uint16_t>();
        convert.template operator()<T, N, std::int16_t>();
        convert.template operator()<T, N, std::int32_t>();
    });
    onAllSizes<std::int8_t>([&]<class T, int N> { convert.template operator()<T, N, std::int16_t>(); });
    onAllSizes<std::uint16_t>([&]<class T, int N> {
        convert.template operator()<T, N, std::uint32_t>();
        convert.template operator()<T, N, std::int32_t>();
        expectBinary<T, N>([](auto a, auto) { return narrowWrapped<std::uint8_t>(a); },
                           [](T a, T) { return static_cast<std::uint8_t>(a); }, "wrap");
    });
    onAllSizes<std::int16_t>([&]<class T, int N> {
        convert.template operator()<T, N, std::int32_t>();
        expectBinary<T, N>([](auto a, auto) { return narrowSaturated<std::uint8_t>(a); },
                           [](T a, T) { return clamped<std::uint8_t>(a); }, "to 8u");
        expectBinary<T, N>([](auto a, auto) { return narrowSaturated<std::int8_t>(a); },
                           [](T a, T) { return clamped<std::int8_t>(a); }, "to 8s");
    });
    onAllSizes<std::int32_t>([&]<class T, int N> {
        expectBinary<T, N>([](auto a, auto) { return narrowSaturated<std::uint16_t>(a); },
                           [](T a, T) { return clamped<std::uint16_t>(a); }, "to 16u");
        expectBinary<T, N>([](auto a, auto) { return narrowSaturated<std::int16_t>(a); },
                           [](T a, T) { return clamped<std::int16_t>(a); }, "to 16s");
        expectBinary<T, N>([](auto a, auto) { return narrowWrapped<std::int16_t>(a); },
                           [](T a, T) { return static_cast<std::int16_t>(a); }, "wrap");
        if constexpr (N >= 4)
            expectBinary<T, N>([](auto a, auto) { return narrowSaturated<std::uint8_t>(a); },
                               [](T a, T) { return clamped<std::uint8_t>(clamped<std::int16_t>(a)); },
                               "to 8u");
    });
}

TEST(Lanes, FloatsAndIntegers) {
    const auto toInteger = []<class T, int N> {
        constexpr auto outside = std::numeric_limits<std::int32_t>::min();
        const auto holds = [](float a) { return a >= -2147483648.F && a < 2147483648.F; };
        expectBinary<T, N>(
            [](auto a, auto) { return nearestEven(a); },
            [&](T a, T) { return holds(a) ? static_cast<std::int32_t>(std::nearbyint(a)) : outside; },
            "nearestEven");
        expectBinary<T, N>([](auto a, auto) { return truncated(a); },
                           [&](T a, T) { return holds(a) ? static_cast<std::int32_t>(a) : outside; },
                           "truncated");
        expectBinary<T, N>([](auto a, auto) { return toDouble(a); }, [](T a, T) { return double{a}; },
                           "toDouble");
    };
    onAllSizes<float>(toInteger);
    const auto toFloats = []<class T, int N> {
        if constexpr (N >= 4)
            expectBinary<T, N>([](auto a, auto) { return toFloat(a); },
                               [](T a, T) { return static_cast<float>(a); }, "toFloat");
        if constexpr (N >= 4 && std::is_same_v<T, std::int32_t>)
            expectBinary<T, N>([](auto a, auto) { return toDouble(a); }, [](T a, T) { return double(a); },
                               "toDouble");
    };
    onAllSizes<std::uint8_t>(toFloats);
    onAllSizes<std::uint16_t>(toFloats);
    onAllSizes<std::int16_t>(toFloats);
    onAllSizes<std::int32_t>(toFloats);
    onAllSizes<double>(toFloats);
}

TEST(Lanes, HalvesJoinAndBroadcast) {
    onAllTypes([]<class T, int N> {
        if constexpr (N * sizeof(T) >= 32 || std::is_integral_v<T>) {
            if constexpr (N > 2) {
                const auto a = anyElements<T, N>();
                const auto block = load<N>(a.data());
                expectSame(a, elementsOf(join(lowHalf(block), highHalf(block))), "join");
            }
        }
        const T value = anyElement<T>();
        Elements<T, N> expected;
        expected.fill(value);
        expectSame(expected, elementsOf(broadcast<N>(value)), "broadcast");
    });
}

TEST(Lanes, PartsOfBlocksStayInTheirMemory) {
    onAllTypes([]<class T, int N> {
        for (int count = 0; count <= N; ++count) {
            const std::size_t bytes = count * sizeof(T);
            support::GuardedPages source(bytes, support::Guard::after);
            support::GuardedPages target(bytes, support::Guard::after);
            const auto a = anyElements<T, N>();
            std::memcpy(source.bytes(), a.data(), bytes);
            const auto block = loadPartial<N>(reinterpret_cast<const T*>(source.bytes()), count);
            const auto loaded = elementsOf(block);
            for (int i = 0; i < N; ++i) ASSERT_TRUE(sameBits(i < count ? a[i] : T{}, loaded[i]));
            storePartial(block, reinterpret_cast<T*>(target.bytes()), count);
            ASSERT_EQ(0, std::memcmp(source.bytes(), target.bytes(), bytes));
        }
    });
}

TEST(Lanes, SignBitsAndAny) {
    onAllTypes([]<class T, int N> {
        if constexpr (N <= 64) {
            for (int round = 0; round < 100; ++round) {
                auto a = anyElements<SignedOf<sizeof(T)>, N>();
                std::uint64_t bits = 0;
                for (int i = 0; i < N; ++i) {
                    a[i] = a[i] < 0 ? -1 : 0;
                    bits |= std::uint64_t{a[i] < 0} << i;
                }
                ASSERT_EQ(bits, std::uint64_t{signBits(load<N>(a.data()))});
            }
            if constexpr (N * sizeof(T) >= 16) {
                Elements<SignedOf<sizeof(T)>, N> mask{};
                ASSERT_FALSE(any(load<N>(mask.data())));
                for (auto& element : mask) {
                    element = -1;
                    ASSERT_TRUE(any(load<N>(mask.data())));
                    element = 0;
                }
            }
        }
    });
}

TEST(Lanes, SumsOverABlock) {
    onAllTypes([]<class T, int N> {
        if constexpr (std::is_integral_v<T>) {
            const auto a = anyElements<T, N>();
            const auto block = load<N>(a.data());
            std::int64_t sum = 0;
            for (const T element : a) sum += element;
            ASSERT_EQ(wrapped<T>(sum), sumOf(block));
            if constexpr (sizeof(T) == 4 && N >= 4) {
                auto expected = a;
                for (int i = 1; i < N; ++i)
                    expected[i] = wrapped<T>(std::int64_t{expected[i]} + expected[i - 1]);
                expectSame(expected, elementsOf(runningSums(block)), "runningSums");
                expected.fill(a[N - 1]);
                expectSame(expected, elementsOf(lastElementEverywhere(block)), "last");
            }
            if constexpr (std::is_same_v<T, std::uint8_t> && N >= 16) {
                const auto sums = elementsOf(byteSums(block));
                for (int i = 0; i < N / 8; ++i) {
                    std::uint64_t expected = 0;
                    for (int k = 0; k < 8; ++k) expected += a[8 * i + k];
                    ASSERT_EQ(expected, sums[i]);
                }
                const auto indices = anyElements<T, N>();
                const auto shuffled = elementsOf(shuffleUnits(block, load<N>(indices.data())));
                for (int i = 0; i < N; ++i)
                    ASSERT_EQ(indices[i] & 0x80 ? 0 : a[i / 16 * 16 + indices[i] % 16], shuffled[i]);
                const auto repeated = elementsOf(repeatUnit<N>(load<16>(a.data())));
                for (int i = 0; i < N; ++i) ASSERT_EQ(a[i % 16], repeated[i]);
            }
        }
    });
}

TEST(Lanes, InterleavingAndItsReverse) {
    onAllTypes([]<class T, int N> {
        if constexpr (sizeof(T) <= 4) {
            const auto a = anyElements<T, N>();
            const auto b = anyElements<T, N>();
            const auto both = interleave(load<N>(a.data()), load<N>(b.data()));
            const auto elements = elementsOf(both);
            for (int i = 0; i < N; ++i) {
                ASSERT_TRUE(sameBits(a[i], elements[2 * i]));
                ASSERT_TRUE(sameBits(b[i], elements[2 * i + 1]));
            }
            if constexpr (std::is_integral_v<T> || N * sizeof(T) >= 16) {
                expectSame(a, elementsOf(evenElements(both)), "even");
                expectSame(b, elementsOf(oddElements(both)), "odd");
            }
        }
    });
}

TEST(Lanes, ThreeBlocksAreStoredInterleaved) {
    onAllSizes<std::uint64_t>([]<class T, int N> {
        if constexpr (N >= 2) {
            const Elements<T, N> blocks[] = {anyElements<T, N>(), anyElements<T, N>(), anyElements<T, N>()};
            Elements<T, 3 * N> stored;
            storeInterleaved(load<N>(blocks[0].data()), load<N>(blocks[1].data()), load<N>(blocks[2].data()),
                             stored.data());
            for (int i = 0; i < 3 * N; ++i) ASSERT_EQ(blocks[i % 3][i / 3], stored[i]);
        }
    });
}

template <class T, int N> void expectUnitsInOrder() {
    if constexpr (N * sizeof(T) >= 16) {
        const auto a = load<N>(anyElements<T, N>().data());
        const auto b = load<N>(anyElements<T, N>().data());
        const auto pairs = interleaveUnits(a, b);
        expectSame(elementsOf(interleave(a, b)), elementsOf(joinUnits(pairs.low, pairs.high)), "units");
    }
}

TEST(Lanes, UnitsInterleaveAndJoinInOrder) {
    onAllSizes<std::uint8_t>([]<class T, int N> { expectUnitsInOrder<T, N>(); });
    onAllSizes<std::int16_t>([]<class T, int N> { expectUnitsInOrder<T, N>(); });
    onAllSizes<std::uint16_t>([]<class T, int N> { expectUnitsInOrder<T, N>(); });
}

TEST(Lanes, UnitsNarrowInOrder) {
    onAllSizes<std::int16_t>([]<class T, int N> {
        if constexpr (N >= 8) {
            // Pairs of 16-bit elements are 32-bit elements.
            const auto a = load<N>(anyElements<T, N>().data());
            const auto b = load<N>(anyElements<T, N>().data());
            const auto pairs = interleaveUnits(a, b);
            const auto low = bitsAs<std::int32_t>(pairs.low);
            const auto high = bitsAs<std::int32_t>(pairs.high);
            const auto wide = joinUnits(low, high);
            expectSame(elementsOf(narrowSaturated<std::int16_t>(wide)),
                       elementsOf(narrowUnits<std::int16_t>(low, high)), "signed");
            const auto inRange = broadcast<N / 2>(0xFFFF);
            const auto words = wide & join(inRange, inRange);
            const auto expected = elementsOf(narrowSaturated<std::uint16_t>(words));
            expectSame(expected, elementsOf(narrowUnits<std::uint16_t>(low & inRange, high & inRange)),
                       "unsigned");
            expectSame(expected, elementsOf(narrowInRange<std::uint16_t>(words)), "in range");
            expectSame(elementsOf(narrowSaturated<std::uint8_t>(joinUnits(a, b))),
                       elementsOf(narrowUnits<std::uint8_t>(a, b)), "bytes");
        }
    });
}

TEST(Lanes, BlocksCoverEveryElementButTheLastFew) {
    for (int end = 0; end < 200; ++end) {
        std::array<int, 200> visits{};
        int next = 3;
        const int after = forBlocks<float, 4>(3, end, [&]<int n>(int i) {
            EXPECT_EQ(next, i);
            next = i + n;
            for (int k = 0; k < n; ++k) ++visits[i + k];
        });
        EXPECT_EQ(next, after);
        EXPECT_EQ(end < 3 ? 0 : (end - 3) / 4 * 4, after - 3);
        for (int i = 0; i < 200; ++i) ASSERT_EQ(i >= 3 && i < after ? 1 : 0, visits[i]);
    }
}

TEST(Lanes, PartsOfAnExpressionCoverEveryElementOnce) {
    std::array<int, 64> visits{};
    forVectors<float, 64>([&]<int n>(int i) {
        for (int k = 0; k < n; ++k) ++visits[i + k];
    });
    for (const int count : visits) EXPECT_EQ(1, count);
}

TEST(Lanes, UniformFactorsMeetEveryElement) {
    onAllSizes<float>([]<class T, int N> {
        const Uniform<float> factor(1.75F);
        expectBinary<T, N>([&](auto a, auto) { return a * factor; }, [](T a, T) { return a * 1.75F; },
                           "uniform");
    });
}

TEST(Lanes, MappedPartsAreThoseOfTheBlock) {
    const auto a = anyElements<std::int32_t, 64>();
    const auto mapped = elementsOf(mapVectors(load<64>(a.data()), [&](auto part, int first) {
        return part + load<decltype(part)::count>(a.data() + first);
    }));
    for (int i = 0; i < 64; ++i) ASSERT_EQ(wrapped<std::int32_t>(2 * std::int64_t{a[i]}), mapped[i]);
}

TEST(Lanes, BlocksComeFromTheirVectors) {
    const auto a = anyElements<float, 64>();
    float target[64];
    store(fromVectors<float, 64>([&]<int n>(int i) { return load<n>(a.data() + i); }), target);
    EXPECT_EQ(0, std::memcmp(a.data(), target, sizeof(target)));
}

TEST(Lanes, StreamingStoresWriteTheBlock) {
    alignas(64) float target[16];
    const auto a = anyElements<float, 16>();
    ASSERT_TRUE(isStreamable(target));
    store<Stores::streaming>(load<16>(a.data()), target);
    storeFence();
    EXPECT_EQ(0, std::memcmp(a.data(), target, sizeof(target)));
}
