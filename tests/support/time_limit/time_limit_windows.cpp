// By a timer of the system's thread pool.
#include "tests/support/time_limit/time_limit.h"

#include <windows.h>

#include <atomic>
#include <cstring>

namespace {

struct {
    std::atomic<const char*> words;
    std::atomic<int> status;
} ending;

void CALLBACK EndProcess(PTP_CALLBACK_INSTANCE, void*, PTP_TIMER) {
    const char* const words = ending.words;
    DWORD written;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), words, static_cast<DWORD>(std::strlen(words)),
              &written, nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ending.status));
}

PTP_TIMER Timer() {
    static const PTP_TIMER timer = CreateThreadpoolTimer(EndProcess, nullptr, nullptr);
    return timer;
}

}  // namespace

void LimitTime(std::chrono::seconds limit, const char* words, int status) {
    ending.words = words;
    ending.status = status;
    ULARGE_INTEGER due;  // in 100 nanoseconds; negative: from now
    due.QuadPart = static_cast<ULONGLONG>(-10'000'000 * limit.count());
    FILETIME time{due.LowPart, due.HighPart};
    SetThreadpoolTimer(Timer(), &time, 0, 0);
}

void LiftTimeLimit() {
    SetThreadpoolTimer(Timer(), nullptr, 0, 0);
}
