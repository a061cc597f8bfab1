// Many threads in the library at once: each result is that of a thread alone.
#include <thread>
#include <vector>

#include "support/cache_report.h"
#include "support/guarded_image.h"

using namespace support;

namespace {

constexpr int width = 301;
constexpr int height = 40;

/// Calls of several families, each with images of its own, folded into one run of bytes.
std::vector<Lum8u> workOf(unsigned seed) {
    GuardedImage<Lum8u> a(width, height);
    GuardedImage<Lum8u> b(width, height);
    GuardedImage<Lum8u> difference(width, height);
    a.fillRandom(seed);
    b.fillRandom(seed + 1);
    lumiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), difference.data(), difference.step(),
                       a.size());
    lumiAbsDiffC_8u_C1R(difference.data(), difference.step(), difference.data(), difference.step(), a.size(),
                        static_cast<int>(seed) % 256);
    return difference.pixels();
}

} // namespace

TEST(Threads, ManyAtOnceGiveTheResultsOfOneAlone) {
    constexpr int threadCount = 8;
    constexpr int rounds = 20;
    std::vector<std::vector<Lum8u>> alone;
    for (int i = 0; i < threadCount; ++i) alone.push_back(workOf(100 + i));

    std::vector<int> differing(threadCount, 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round)
                if (workOf(100 + i) != alone[i]) ++differing[i];
        });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < threadCount; ++i) EXPECT_EQ(0, differing[i]) << "thread " << i;
}
