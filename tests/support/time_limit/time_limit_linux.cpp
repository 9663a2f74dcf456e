// By the alarm clock of the process: a thread is nothing that survives the fork of a peer.
#include "tests/support/time_limit/time_limit.h"

#include <unistd.h>

#include <csignal>
#include <cstring>

namespace {

struct {
    const char* volatile words;
    volatile int status;
} ending;

void EndProcess(int) {
    const char* const words = ending.words;
    const auto written = write(STDERR_FILENO, words, std::strlen(words));
    _exit(written < 0 ? 1 : ending.status);
}

}  // namespace

void LimitTime(std::chrono::seconds limit, const char* words, int status) {
    LiftTimeLimit();
    ending.words = words;
    ending.status = status;
    std::signal(SIGALRM, EndProcess);
    alarm(static_cast<unsigned>(limit.count()));
}

void LiftTimeLimit() {
    alarm(0);
}
