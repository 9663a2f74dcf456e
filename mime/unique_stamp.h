// The numbers in generated message identifiers and boundaries.
#pragma once

#include <windows.h>

#include <string>

namespace quorvane {

struct UniqueStamp {
    ULONG random;  // 15 bits
    ULONG tick;    // milliseconds, wraps after 49.7 days
};

// A stamp that no other call in this process gets, on whatever thread, until ticks wrap: the
// tick count and a number of the thread's generator, moved on when they would not be the highest.
UniqueStamp NextStamp();

// Restarts the calling thread's generator. Threads that are seeded with the same tick still get
// different sequences.
void SeedThreadGenerator(ULONG tick);

// Appends random and tick with the separator between them, eight upper-case hexadecimal digits
// each.
void AppendStamp(const UniqueStamp& stamp, char separator, std::string& out);

}  // namespace quorvane
