// Elapsed time for waits with a limit.
#pragma once

#include <chrono>

namespace quorvane {

// 64 bits: three times the longest reply time-out in seconds fits easily.
using Milliseconds = std::chrono::duration<long long, std::milli>;

using Clock = std::chrono::steady_clock;

// Runs from its construction on, or from a look at the clock that serves several of them.
class Stopwatch {
public:
    Stopwatch() = default;
    explicit Stopwatch(Clock::time_point start) : m_start(start) {}

    Milliseconds elapsed() const { return elapsed(Clock::now()); }
    Milliseconds elapsed(Clock::time_point now) const {
        return std::chrono::duration_cast<Milliseconds>(now - m_start);
    }

private:
    Clock::time_point m_start = Clock::now();
};

}  // namespace quorvane
