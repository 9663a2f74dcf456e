// The program's own allocation and its own making of threads, which fail when they are told to.
#pragma once

namespace quorvane {

// Has that many allocations succeed, on whatever threads, and the one behind them fail. Negative
// for none.
void FailAllocation(long after);

// Has every attempt to make a thread end as it does when there is no memory for its stack.
void FailThreads(bool failing);

}  // namespace quorvane
