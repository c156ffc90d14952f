#include "Vantrel/app/MemoryPolicy.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

namespace vantrel {
namespace {

// AddressSanitizer replaces the allocator, so the policy has nothing to act on there.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitizerAllocator = true;
#elif defined(__has_feature)
constexpr bool sanitizerAllocator = __has_feature(address_sanitizer);
#else
constexpr bool sanitizerAllocator = false;
#endif

long residentKilobytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stol(line.substr(6));
        }
    }
    return -1;
}

// What a run of large limits documents does to the heap: on a worker thread, text of 1 to 8 MiB is
// built, read and freed, the largest first.
void readLargeDocuments()
{
    std::thread([] {
        for (std::size_t mebibytes = 8; mebibytes >= 1; --mebibytes) {
            const std::string text(mebibytes << 20U, 'p');
            ASSERT_EQ(text.back(), 'p');
        }
    }).join();
}

TEST(MemoryPolicy, FreedLargeBlocksLeaveNothingResident)
{
    if (sanitizerAllocator) {
        GTEST_SKIP() << "AddressSanitizer has an allocator of its own";
    }
    keepLargeBlocksMapped();
    const long start = residentKilobytes();
    for (int round = 1; round <= 3; ++round) {
        readLargeDocuments();
        EXPECT_LT(residentKilobytes() - start, 1024) << "after round " << round;
    }
}

} // namespace
} // namespace vantrel
