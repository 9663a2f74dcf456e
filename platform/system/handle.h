// Handles of what the kernel keeps by descriptor: files, and ends of threads.
#pragma once

#include <windef.h>

#include <cstdint>

namespace quorvane::platform {

// The file descriptor plus one, times four: never null, a multiple of four as on Windows, and a
// wrong one is found out by the kernel.
inline HANDLE ToHandle(int descriptor) {
    return reinterpret_cast<HANDLE>((static_cast<ULONG_PTR>(descriptor) + 1) * 4);
}

// -1 for what can't be such a handle.
inline int Descriptor(HANDLE handle) {
    const auto value = reinterpret_cast<ULONG_PTR>(handle);
    if (value == 0 || value % 4 != 0 || value / 4 > INT32_MAX) return -1;
    return static_cast<int>(value / 4 - 1);
}

}  // namespace quorvane::platform
