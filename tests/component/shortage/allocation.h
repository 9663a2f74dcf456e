// The program's own allocation, which fails when it is told to.
#pragma once

namespace quorvane {

// Has that many allocations succeed, on whatever threads, and the one behind them fail. Negative
// for none.
void FailAllocation(long after);

}  // namespace quorvane
