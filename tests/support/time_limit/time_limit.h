// A limit to the time that a process takes. What hangs says so and ends, rather than being ended by
// whoever waits for it, without a word.
#pragma once

#include <chrono>

// Once that time has passed from now on, `words` go to the standard error stream and the process
// ends with `status`, wherever its threads are. Instead of an earlier limit. `words` stay the
// caller's, and must stay.
void LimitTime(std::chrono::seconds limit, const char* words, int status);
// No limit any more.
void LiftTimeLimit();
