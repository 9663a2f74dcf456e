// The memory and the system calls of this program, which fail when they are told to. Only those of
// the thread that tells them do: a peer in the same program goes on.
#pragma once

#include <cstddef>

namespace quorvane::faults {

enum class Resource { Memory, SystemCall };

// As long as it lives, the calling thread's request number `at` of that kind fails, counted from 0;
// a system call with this errno. One at a time.
class Failing {
public:
    Failing(Resource resource, long at, int error = 0);
    ~Failing();
    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;

    // True once it has failed. The call's name, or "malloc"; and how many bytes the thread had
    // received before.
    bool happened() const;
    const char* what() const;
    std::size_t receivedBefore() const;
};

// Bytes of the heap that are in use.
std::size_t HeapInUse();

}  // namespace quorvane::faults
