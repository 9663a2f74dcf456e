// A mail peer in a process of its own, for programs that do to themselves what it must not suffer.
#pragma once

#include <sys/types.h>

#include <atomic>

namespace quorvane::testing {

// See MailPeer. To be made before the program has threads; ends with it.
class PeerProcess {
public:
    PeerProcess();
    ~PeerProcess();
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    int port() const { return port_; }  // host byte order
    // Messages that the peer has accepted, a short while ago.
    long long acceptedCount() const { return *accepted_; }

private:
    std::atomic<long long>* accepted_;  // in memory that both processes share
    pid_t process_ = 0;
    int port_ = 0;
};

}  // namespace quorvane::testing
