// Elapsed time for waits with a limit.
#pragma once

#include <chrono>

namespace quorvane {

// 64 bits: three times the longest reply time-out in seconds fits easily.
using Milliseconds = std::chrono::duration<long long, std::milli>;

// Runs from its construction on.
class Stopwatch {
public:
    Milliseconds elapsed() const {
        return std::chrono::duration_cast<Milliseconds>(Clock::now() - m_start);
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_start = Clock::now();
};

}  // namespace quorvane
