#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <thread>
#include <vector>

#include "mime/boundary.h"
#include "mime/unique_stamp.h"
#include "tests/mime/composing.h"

namespace quorvane {
namespace {

// What stands behind each occurrence of the words, up to the delimiter.
void Collect(const std::string& text, std::string_view words, char end,
             std::vector<std::string>& found) {
    for (std::size_t at = 0; (at = text.find(words, at)) != std::string::npos;) {
        at += words.size();
        found.push_back(text.substr(at, text.find(end, at) - at));
    }
}

TEST(UniqueStamp, NoTwoMessagesShareAnIdentifierOrABoundary) {
    constexpr std::size_t kThreads = 8, kMessages = 10000;
    std::vector<std::vector<std::string>> found(kThreads);
    std::vector<std::thread> threads;
    for (auto& own : found) {
        threads.emplace_back([&own] {
            SeedThreadGenerator(4711);  // alike on all of them
            COutgoingMessage sample = SampleRecord();
            sample.messageId.clear();
            sample.bodyParts = {TextBody(OLESTR("a")), TextBody(OLESTR("b"))};
            for (std::size_t i = 0; i < kMessages; ++i) {
                COutgoingMessage message = sample;
                const std::string text = Compose(message);
                Collect(text, "Message-ID: <", '>', own);
                Collect(text, "boundary=\"", '"', own);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<std::string> all;
    for (const auto& own : found) all.insert(all.end(), own.begin(), own.end());
    EXPECT_EQ(all.size(), 2 * kThreads * kMessages);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

// Within one tick, or when stamps were drawn faster than the clock ticks, they only count up.
TEST(UniqueStamp, TellsTheTimeAndVaries) {
    std::set<ULONG> randoms;
    ULONG last = NextStamp().tick;
    for (int i = 0; i < 20; ++i) {
        ULONG before;
        while (static_cast<LONG>((before = GetTickCount()) - last) <= 0) std::this_thread::yield();
        const UniqueStamp stamp = NextStamp();
        last = stamp.tick;
        EXPECT_LE(stamp.tick - before, GetTickCount() - before);
        randoms.insert(stamp.random);
    }
    EXPECT_GT(randoms.size(), 15u);
}

TEST(UniqueStamp, BoundaryText) {
    EXPECT_EQ(MakeBoundary(0, {0x12AB, 0x0036EE80}), "MessagePart_0000012AB_0036EE80");
    EXPECT_EQ(MakeBoundary(2, {0x7FFF, 0xFFFFFFFF}), "MessagePart_200007FFF_FFFFFFFF");
    EXPECT_TRUE(std::regex_match(MakeBoundary(1),
                                 std::regex("MessagePart_10000[0-7][0-9A-F]{3}_[0-9A-F]{8}")));
}

}  // namespace
}  // namespace quorvane
