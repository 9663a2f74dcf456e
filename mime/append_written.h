// Growing a string by bytes that are written in place.
#pragma once

#include <cstddef>
#include <string>

namespace quorvane {

// Appends `size` bytes, which `write` writes to the place that it is given. Where the library can,
// they aren't cleared before: clearing takes as long as encoding Base64, 2.7 ms for a file of 25
// MiB.
template <class Write>
void AppendWritten(std::string& out, std::size_t size, Write write) {
    const std::size_t start = out.size();
#if defined(__cpp_lib_string_resize_and_overwrite)
    // libstdc++ 12 hands over the grown capacity in place of the size.
    out.resize_and_overwrite(start + size, [&](char* bytes, std::size_t) {
        write(bytes + start);
        return start + size;
    });
#else
    out.resize(start + size);
    write(out.data() + start);
#endif
}

}  // namespace quorvane
