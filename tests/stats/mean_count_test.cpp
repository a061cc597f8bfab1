// A count of pixels beyond 32 bits: without a mask it wraps where pointers have 32 bits, with one the selected pixels are
// counted in any build.
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "support/status_checks.h"

namespace {

/// A region of more pixels than there is memory: every piece of it is the same mebibyte of bytes of 3. In 32 bits rows
/// lie 2^30 bytes apart, so that only four addresses begin one; in 64 bits they follow one another.
class HugeRegion {
  public:
    static constexpr bool isNarrow = sizeof(void*) == 4;
    static constexpr int width = 65536;
    static constexpr int step = isNarrow ? 0x40000000 : width;

    explicit HugeRegion(int height) : file_(memfd_create("pixels", 0)) {
        const std::vector<Lum8u> pixels(piece, 3);
        if (write(file_, pixels.data(), piece) != static_cast<ssize_t>(piece)) return;
        const std::uintptr_t pieces = isNarrow ? 4 : static_cast<std::uintptr_t>(height) * width / piece + 1;
        for (std::uintptr_t first = lowestAddress; first < highestAddress; first += piece)
            if (mapPieces(first, pieces)) {
                data_ = reinterpret_cast<const Lum8u*>(first);
                return;
            }
    }
    ~HugeRegion() {
        unmapPieces();
        close(file_);
    }
    HugeRegion(const HugeRegion&) = delete;
    HugeRegion& operator=(const HugeRegion&) = delete;

    /// Null where the process cannot hold it.
    const Lum8u* data() const { return data_; }

  private:
    static constexpr std::size_t piece = 0x100000;
    static constexpr std::uintptr_t distance = isNarrow ? step : piece;
    // A sanitizer of 32 bits keeps addresses from 2^29 on to itself, one of 64 bits some up to 2^44 and a little more; programs
    // and libraries of 64 bits lie far above 2^45.
    static constexpr std::uintptr_t lowestAddress =
        isNarrow ? 0x10000000 : std::uintptr_t{0x20000} * 0x10000000;
    static constexpr std::uintptr_t highestAddress = lowestAddress + 0x10000000;

    bool mapPieces(std::uintptr_t first, std::uintptr_t count) {
        for (std::uintptr_t i = 0; i < count; ++i) {
            void* const wanted = reinterpret_cast<void*>(first + i * distance);
            void* const mapped = mmap(wanted, piece, PROT_READ, MAP_SHARED | MAP_FIXED_NOREPLACE, file_, 0);
            if (mapped != MAP_FAILED) mapped_.push_back(mapped);
            if (mapped == wanted) continue;
            unmapPieces();
            return false;
        }
        return true;
    }
    void unmapPieces() {
        for (void* mapped : mapped_) munmap(mapped, piece);
        mapped_.clear();
    }

    int file_;
    const Lum8u* data_ = nullptr;
    std::vector<void*> mapped_;
};

} // namespace

TEST(Mean_StdDev_8u_C1R, CountOfPixelsIsAsWideAsAPointer) {
    constexpr int height = 65536 + 1;
    const HugeRegion region(height);
    ASSERT_NE(nullptr, region.data());
    Lum64f mean = -1;
    Lum64f stdDev = -1;
    // 2^32 pixels are none in 32 bits
    EXPECT_STATUS(lumStatusOk, lumiMean_StdDev_8u_C1R(region.data(), HugeRegion::step,
                                                      {HugeRegion::width, height - 1}, &mean, &stdDev));
    EXPECT_EQ(HugeRegion::isNarrow ? 0.0 : 3.0, mean);
    EXPECT_EQ(0.0, stdDev);
    // and one row more is one row
    EXPECT_STATUS(lumStatusOk, lumiMean_StdDev_8u_C1R(region.data(), HugeRegion::step,
                                                      {HugeRegion::width, height}, &mean, nullptr));
    EXPECT_EQ(HugeRegion::isNarrow ? 3.0 * height : 3.0, mean);
    // but every selected pixel counts
    EXPECT_STATUS(lumStatusOk, lumiMean_8u_C1MR(region.data(), HugeRegion::step, region.data(),
                                                HugeRegion::step, {HugeRegion::width, height}, &mean));
    EXPECT_EQ(3.0, mean);
}
