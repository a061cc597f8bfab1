// Many threads in the library at once: each result is that of a thread alone.
#include <thread>
#include <vector>

#include "support/cache_report.h"
#include "support/guarded_image.h"

using namespace support;

namespace {

constexpr int width = 301;
constexpr int height = 40;

/// Puts a run of values after the bytes.
template <class T> void append(std::vector<Lum8u>& bytes, const std::vector<T>& values) {
    const auto* first = reinterpret_cast<const Lum8u*>(values.data());
    bytes.insert(bytes.end(), first, first + values.size() * sizeof(T));
}

/// Calls of several families, each with images of its own, folded into one run of bytes. They
/// share the filter's spec, which a run only reads.
std::vector<Lum8u> workOf(unsigned seed, const LumFilterGaussianSpecL* gaussian) {
    GuardedImage<Lum8u> a(width, height);
    GuardedImage<Lum8u> b(width, height);
    GuardedImage<Lum8u> result(width, height);
    GuardedImage<Lum32s> integral(width + 1, height + 1);
    GuardedImage<Lum32f> sum(width, height);
    a.fillRandom(seed);
    b.fillRandom(seed + 1);
    std::vector<Lum8u> bytes;

    lumiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), result.data(), result.step(), a.size());
    append(bytes, result.pixels());
    lumiAddWeighted_8u32f_C1IMR(a.data(), a.step(), b.data(), b.step(), sum.data(), sum.step(), a.size(),
                                0.25F);
    append(bytes, sum.pixels());
    lumiIntegral_8u32s_C1R(a.data(), a.step(), integral.data(), integral.step(), a.size(), 3);
    append(bytes, integral.pixels());
    std::vector<Lum64f> norm(1);
    lumiNormDiff_L2_8u_C1MR(a.data(), a.step(), b.data(), b.step(), a.data(), a.step(), a.size(),
                            norm.data());
    append(bytes, norm);

    Lum32s bufferSize = 0;
    lumiFilterGaussianGetBufferSize_L({width, height}, 7, lumType8u, lumBorderMirror, 1, &bufferSize);
    GuardedBlock buffer(bufferSize);
    lumiFilterGaussian_8u_C1R_L(a.data(), a.step(), result.data(), result.step(), {width, height},
                                lumBorderMirror, nullptr, gaussian, buffer.as());
    append(bytes, result.pixels());
    return bytes;
}

} // namespace

TEST(Threads, ManyAtOnceGiveTheResultsOfOneAlone) {
    constexpr int threadCount = 8;
    constexpr int rounds = 20;
    Lum32s specSize = 0;
    Lum32s scratchSize = 0;
    ASSERT_EQ(lumStatusOk, lumiFilterGaussianGetSpecSize_L(7, lumType8u, 1, &specSize, &scratchSize));
    GuardedBlock spec(specSize);
    GuardedBlock scratch(scratchSize);
    auto* gaussian = spec.as<LumFilterGaussianSpecL>();
    ASSERT_EQ(lumStatusOk, lumiFilterGaussianInit_L({width, height}, 7, 1.5F, lumBorderMirror, lumType8u, 1,
                                                    gaussian, scratch.as()));
    std::vector<std::vector<Lum8u>> alone;
    for (int i = 0; i < threadCount; ++i) alone.push_back(workOf(100 + i, gaussian));

    std::vector<int> differing(threadCount, 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round)
                if (workOf(100 + i, gaussian) != alone[i]) ++differing[i];
        });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < threadCount; ++i) EXPECT_EQ(0, differing[i]) << "thread " << i;
}
