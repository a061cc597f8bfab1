// The real companion library, which every other test replaces.
#include <cpuid.h>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <string>
#include <utility>

#include "lumcore.h"

namespace {

using CacheQuery = LumStatus (*)(int32_t*);

CacheQuery realQuery() {
    static void* library = dlopen(LUMCORE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return library == nullptr ? nullptr : reinterpret_cast<CacheQuery>(dlsym(library, "lumGetMaxCacheSizeB"));
}

/// The largest data cache as the kernel lists it, 0 where it lists none.
long long largestListedCache() {
    long long largest = 0;
    for (int index = 0; index < 16; ++index) {
        const std::string folder = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(index) + "/";
        std::ifstream typeFile(folder + "type");
        std::ifstream sizeFile(folder + "size");
        std::string type;
        std::string size;
        if (!(typeFile >> type) || !(sizeFile >> size) || type == "Instruction") continue;
        const long long unit = size.back() == 'K' ? 1024 : size.back() == 'M' ? 1024 * 1024 : 1;
        largest = std::max(largest, std::atoll(size.c_str()) * unit);
    }
    return largest;
}

/// Whether a program that asks the processor is answered by the one that the kernel lists first. On a processor it is; an
/// emulator may answer for a processor of its own.
bool listedProcessorAnswers() {
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0) return true;
    const unsigned baseFamily = eax >> 8 & 0xF;
    const unsigned family = baseFamily == 0xF ? baseFamily + (eax >> 20 & 0xFF) : baseFamily;
    const unsigned model = (eax >> 4 & 0xF) + (family >= 6 ? eax >> 12 & 0xF0 : 0);
    const std::pair<std::string, unsigned> answers[] = {
        {"cpu family\t", family}, {"model\t\t", model}, {"stepping\t", eax & 0xF}};
    std::ifstream list("/proc/cpuinfo");
    for (std::string line; std::getline(list, line) && !line.empty();) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        for (const auto& [name, number] : answers)
            if (line.substr(0, colon) == name &&
                std::strtoul(line.c_str() + colon + 1, nullptr, 10) != number)
                return false;
    }
    return true;
}

} // namespace

TEST(Companion, NullPointerIsNullPointer) {
    ASSERT_NE(nullptr, realQuery());
    EXPECT_EQ(static_cast<LumStatus>(lumStatusNullPointer), realQuery()(nullptr));
}

TEST(Companion, AnswersTheSameOnEveryCall) {
    int32_t first = -1;
    int32_t second = -1;
    const LumStatus status = realQuery()(&first);
    EXPECT_EQ(status, realQuery()(&second));
    EXPECT_EQ(first, second);
    if (status == lumStatusOk)
        EXPECT_GT(first, 0);
    else
        EXPECT_EQ(-1, first);
}

TEST(Companion, AgreesWithTheKernelsList) {
    if (!listedProcessorAnswers()) GTEST_SKIP() << "an emulator answers for another processor";
    const long long listed = largestListedCache();
    int32_t bytes = 0;
    const LumStatus status = realQuery()(&bytes);
    if (listed != 0 && status == lumStatusOk) {
        EXPECT_EQ(std::min<long long>(listed, 0x7FFFFFFF), bytes);
    }
}
