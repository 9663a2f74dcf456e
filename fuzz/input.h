// What the fuzzers share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "automation/wide_string.h"

namespace quorvane::fuzzing {

// Ends the program, which keeps the input, when what must always hold doesn't.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

// The input, taken off its front in pieces. Texts end at a separator or at the end of the input,
// behind which there are zeros and empty texts without end.
class Input {
public:
    static constexpr char kSeparator = '\x1E';

    Input(const std::uint8_t* data, std::size_t size)
        : m_left(reinterpret_cast<const char*>(data), size) {}

    bool empty() const { return m_left.empty(); }
    std::string_view rest() const { return m_left; }

    unsigned TakeByte() {
        const std::string_view byte = TakeBytes(1);
        return byte.empty() ? 0 : static_cast<unsigned char>(byte[0]);
    }

    std::string_view TakeBytes(std::size_t count) {
        const std::string_view bytes = m_left.substr(0, count);
        m_left.remove_prefix(bytes.size());
        return bytes;
    }

    std::string_view TakeText() {
        const std::string_view text = m_left.substr(0, m_left.find(kSeparator));
        m_left.remove_prefix(std::min(text.size() + 1, m_left.size()));
        return text;
    }

    // The text in the thread's ANSI code page.
    WideString TakeWideText() { return FromAnsi(TakeText()); }

private:
    std::string_view m_left;
};

}  // namespace quorvane::fuzzing
