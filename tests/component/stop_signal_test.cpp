// The end of an object's threads. Limits of an hour: a wait that doesn't end before is a failure.
#include "component/stop_signal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

namespace quorvane {
namespace {

constexpr std::chrono::hours kLimit{1};

TEST(StopSignal, ReleaseWaitsNoLongerThanForTheLastThread) {
    StopSignal signal;
    std::atomic<int> ended = 0;
    const auto start = [&] {
        signal.ThreadStarts();
        return StartModuleThread([&] {
            if (signal.WaitFor(kLimit)) ++ended;
            signal.ThreadEnds();
        });
    };
    signal.ThreadStarts();
    signal.ThreadFailsToStart();
    ASSERT_TRUE(start());
    ASSERT_TRUE(start());
    signal.Send();
    signal.WaitForThreads(kLimit);
    EXPECT_EQ(ended, 2);
    ASSERT_TRUE(start());
    signal.WaitForThreads(kLimit);
    EXPECT_EQ(ended, 3) << "one that comes late finds the signal";
}

TEST(StopSignal, ReleaseDoesNotWaitForACall) {
    StopSignal signal;
    signal.ThreadStarts();
    ASSERT_TRUE(signal.CallBegins());
    signal.Send();
    signal.WaitForThreads(kLimit);
    EXPECT_FALSE(signal.CallBegins()) << "nobody is called any more";
}

}  // namespace
}  // namespace quorvane
