// Apartments of threads.
#pragma once

namespace quorvane::platform {

// True when the calling thread may use COM: it has entered an apartment, or some thread has entered
// the multithreaded one, which takes in all threads that have none.
bool InApartment();

}  // namespace quorvane::platform
