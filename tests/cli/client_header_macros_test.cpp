// The headers in a program whose <windows.h> has made macros of min and max, as it does unless it
// is told not to.
#include <windows.h>
#include <ocidl.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <concepts>
#include <functional>
#include <stdexcept>
#include <string>

#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#include "quorvane_events.hpp"
#undef min
#undef max

namespace quorvane::client {
namespace {

TEST(ClientHeader, TimesBeyondThirtyTwoBitsDoNotWrap) {
    const Apartment apartment;
    Mailer mailer("127.0.0.1");
    LONG seconds = 0;
    mailer.ReplyTimeout(std::chrono::seconds((1LL << 32) + 1));
    ASSERT_EQ(mailer.com()->get_ReplyTimeout(&seconds), S_OK);
    EXPECT_EQ(seconds, 0x7FFFFFFF);
}

}  // namespace
}  // namespace quorvane::client
