#include <fcntl.h>
#include <unistd.h>

#include "cli/run.h"

namespace {

// Closed ones would be the next sockets, and get what is meant for a terminal. Reading the input
// and writing the output fail as if they were still closed.
void KeepStandardStreamsTaken() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) >= 0) continue;
        const int taken =
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // the lowest free
        if (taken != descriptor) _exit(quorvane::cli::kNotSent);
    }
}

}  // namespace

int main(int count, char** arguments) {
    KeepStandardStreamsTaken();
    return quorvane::cli::Run({arguments + 1, arguments + count});
}
