// When the threads of an object look for work.
#pragma once

#include <chrono>

#include "component/stop_signal.h"

namespace quorvane {

// The looks of one thread, a period apart. Once it has found nothing it sleeps until there is
// something, and goes on with the look that would have come next: idle objects take no time, and
// work is found as soon as if the thread had gone on looking.
class Pace {
public:
    Pace(StopSignal& signal, Work work, std::chrono::steady_clock::duration period)
        : signal_(signal), work_(work), period_(period) {}

    // Waits for the next look; false when the thread shall end. `idle`: the last one found nothing.
    bool NextLook(bool idle) {
        const auto last = Clock::now();
        if (idle && signal_.WaitForRing(work_, rings_)) return false;
        const auto periods = idle ? (Clock::now() - last) / period_ : 0;
        if (signal_.WaitUntil(last + (periods + 1) * period_)) return false;
        // Before the look: what comes after it rings once more.
        rings_ = signal_.rings(work_);
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;

    StopSignal& signal_;
    const Work work_;
    const Clock::duration period_;
    unsigned long long rings_ = 0;
};

}  // namespace quorvane
