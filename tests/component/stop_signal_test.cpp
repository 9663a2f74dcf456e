// What an object's threads wait for. Limits of an hour: a wait that doesn't end before is a
// failure.
#include "component/stop_signal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "component/pace.h"

namespace quorvane {
namespace {

constexpr std::chrono::hours kLimit{1};

std::chrono::steady_clock::time_point InAnHour() {
    return std::chrono::steady_clock::now() + kLimit;
}

TEST(StopSignal, ReleaseWaitsNoLongerThanForTheLastThread) {
    StopSignal signal;
    std::atomic<int> ended = 0;
    const auto start = [&] {
        signal.ThreadStarts();
        return StartModuleThread([&] {
            if (signal.WaitUntil(InAnHour())) ++ended;
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

// How often something has happened, for those who wait for it.
class Occurrences {
public:
    void Add() {
        const std::lock_guard lock(mutex_);
        ++number_;
        changed_.notify_all();
    }
    void WaitFor(int number) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return number_ >= number; });
    }
    int number() {
        const std::lock_guard lock(mutex_);
        return number_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int number_ = 0;
};

TEST(Pace, AThreadWithoutWorkLooksOnceForEachRing) {
    StopSignal signal;
    Occurrences looks;
    std::thread thread([&] {
        Pace pace(signal, Work::Events, std::chrono::milliseconds(1));
        for (bool idle = false; pace.NextLook(idle); idle = true) looks.Add();
    });
    for (int expected = 1; expected <= 4; ++expected) {
        looks.WaitFor(expected);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // for looks that are too many
        EXPECT_EQ(looks.number(), expected);
        signal.Ring(Work::Messages);  // somebody else's
        if (expected < 4) signal.Ring(Work::Events);
    }
    signal.Send();
    thread.join();
    EXPECT_EQ(looks.number(), 4);
}

TEST(Pace, WorkIsLookedForNoSoonerThanIsUsual) {
    constexpr std::chrono::milliseconds kPeriod{10};
    StopSignal signal;
    std::vector<std::chrono::steady_clock::time_point> looks;
    Pace pace(signal, Work::Messages, kPeriod);
    for (bool idle = false; looks.size() < 4; idle = true) {
        ASSERT_TRUE(pace.NextLook(idle));
        looks.push_back(std::chrono::steady_clock::now());
        signal.Ring(Work::Messages);
    }
    for (std::size_t look = 1; look < looks.size(); ++look) {
        EXPECT_GE(looks[look] - looks[look - 1], kPeriod);
    }
}

TEST(Pace, NoWorkIsMissed) {
    constexpr int kItems = 20000;
    StopSignal signal;
    std::atomic<int> waiting = 0;
    std::atomic<int> done = 0;
    std::thread thread([&] {
        Pace pace(signal, Work::Messages, std::chrono::microseconds(1));
        for (bool idle = false; pace.NextLook(idle);) {
            const int taken = waiting.exchange(0);
            idle = taken == 0;
            done += taken;
        }
    });
    for (int item = 0; item < kItems; ++item) {
        ++waiting;
        signal.Ring(Work::Messages);
        if (item % 3 == 0) std::this_thread::yield();
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (done < kItems && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    EXPECT_EQ(done, kItems);
    signal.Send();
    thread.join();
}

}  // namespace
}  // namespace quorvane
