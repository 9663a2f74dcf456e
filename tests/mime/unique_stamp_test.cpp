#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <thread>
#include <vector>

#include "mime/boundary.h"
#include "mime/unique_stamp.h"

namespace quorvane {
namespace {

TEST(UniqueStamp, DiffersOnThreadsThatAreSeededAlike) {
    constexpr std::size_t kThreads = 4, kStamps = 50000;
    std::vector<std::vector<ULONGLONG>> drawn(kThreads);
    std::vector<std::thread> threads;
    for (auto& own : drawn) {
        threads.emplace_back([&own] {
            SeedThreadGenerator(4711);
            own.reserve(kStamps);
            for (std::size_t i = 0; i < kStamps; ++i) {
                const UniqueStamp stamp = NextStamp();
                EXPECT_LT(stamp.random, 1u << 15);
                own.push_back(ULONGLONG{stamp.tick} << 32 | stamp.random);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<ULONGLONG> all;
    for (const auto& own : drawn) {
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
        all.insert(all.end(), own.begin(), own.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

TEST(UniqueStamp, TellsTheTimeAndVaries) {
    const ULONG before = GetTickCount();
    std::set<ULONG> randoms;
    for (int i = 0; i < 1000; ++i) {
        const UniqueStamp stamp = NextStamp();
        // Other tests may have drawn stamps faster than the clock ticks.
        EXPECT_LT(stamp.tick - before, 60000u);
        randoms.insert(stamp.random >> 5);  // stamps that only count up share these bits
    }
    EXPECT_GT(randoms.size(), 30u);
}

TEST(UniqueStamp, BoundaryText) {
    EXPECT_EQ(MakeBoundary(0, {0x12AB, 0x0036EE80}), "MessagePart_0000012AB_0036EE80");
    EXPECT_EQ(MakeBoundary(2, {0x7FFF, 0xFFFFFFFF}), "MessagePart_200007FFF_FFFFFFFF");
    EXPECT_TRUE(std::regex_match(MakeBoundary(1),
                                 std::regex("MessagePart_10000[0-7][0-9A-F]{3}_[0-9A-F]{8}")));
}

}  // namespace
}  // namespace quorvane
