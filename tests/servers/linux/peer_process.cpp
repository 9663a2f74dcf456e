#include "tests/servers/linux/peer_process.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <new>
#include <stdexcept>
#include <thread>

#include "tests/servers/mail_peer.h"

namespace quorvane::testing {
namespace {

using Count = std::atomic<long long>;

Count* SharedCount() {
    void* const memory =
        mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no memory to share");
    return new (memory) Count(0);
}

[[noreturn]] void Serve(int answer, pid_t parent, Count& accepted) {
    MailPeer peer;
    peer.CountOnly();
    const int port = peer.port();
    if (write(answer, &port, sizeof port) != sizeof port) _exit(1);
    while (getppid() == parent) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        accepted = peer.acceptedCount();
    }
    _exit(0);
}

}  // namespace

PeerProcess::PeerProcess() : accepted_(SharedCount()) {
    int ends[2];
    const pid_t parent = getpid();
    if (pipe(ends) != 0 || (process_ = fork()) < 0) throw std::runtime_error("no peer process");
    if (process_ == 0) Serve(ends[1], parent, *accepted_);
    close(ends[1]);
    const bool answered = read(ends[0], &port_, sizeof port_) == sizeof port_;
    close(ends[0]);
    if (!answered) throw std::runtime_error("the peer process doesn't answer");
}

PeerProcess::~PeerProcess() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    munmap(accepted_, sizeof(Count));
}

}  // namespace quorvane::testing
