// A library that composes a message and sends it. It builds the message anew each time, as a
// program that sends it would.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "bench/workloads.h"

namespace quorvane::bench {

class Contender {
public:
    virtual ~Contender() = default;
    // Takes the workload in the library's own kinds of string, and the port of the server at
    // 127.0.0.1; not measured.
    virtual void Prepare(const Workload& workload, int port) = 0;
    // The whole text, which stays until the next call.
    virtual std::string_view Compose() = 0;
    // Composes and sends over a connection of its own. Throws when the server hasn't taken it.
    virtual void Send() = 0;
};

// The contender of this program; called in the thread that uses it.
std::unique_ptr<Contender> MakeContender();

}  // namespace quorvane::bench
