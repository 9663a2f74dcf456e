// Looking at eight bytes of text at once. Tests give a word in which the highest bit of each byte
// that passes is set and all other bits are clear.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace quorvane {

using EightBytes = std::uint64_t;  // the first byte is the lowest

inline EightBytes LoadEight(const char* from) {
    static_assert(std::endian::native == std::endian::little);
    EightBytes bytes;
    std::memcpy(&bytes, from, 8);
    return bytes;
}

// The byte in all eight places.
constexpr EightBytes EightTimes(unsigned char byte) {
    return 0x0101010101010101u * byte;
}

inline constexpr EightBytes kHighBits = EightTimes(0x80);

// Which bytes are `first` or higher, for `first` from 1 to 0x80. The highest bit of each byte is
// left out of the sum, so that no byte carries into the next one.
constexpr EightBytes AtLeast(EightBytes bytes, unsigned char first) {
    const EightBytes sum =
        (bytes & ~kHighBits) + EightTimes(static_cast<unsigned char>(0x80 - first));
    return (sum | bytes) & kHighBits;
}

// Which bytes are the ASCII character c.
constexpr EightBytes EqualTo(EightBytes bytes, char c) {
    const EightBytes difference = bytes ^ EightTimes(static_cast<unsigned char>(c));
    return ~AtLeast(difference, 1) & kHighBits;
}

// True when one of the text's bytes is lower than `limit`, from 1 to 0x80.
inline bool HasBelow(std::string_view text, unsigned char limit) {
    const auto anyOf = [limit](EightBytes bytes) {
        return (~AtLeast(bytes, limit) & kHighBits) != 0;
    };
    if (text.size() < 8) {
        return std::any_of(text.begin(), text.end(),
                           [limit](char c) { return static_cast<unsigned char>(c) < limit; });
    }
    const char* const last = text.data() + text.size() - 8;
    for (const char* from = text.data(); from < last; from += 8) {
        if (anyOf(LoadEight(from))) return true;
    }
    return anyOf(LoadEight(last));
}

// How many bytes passed a test.
constexpr std::size_t CountPassed(EightBytes test) {
    return static_cast<std::size_t>((test >> 7) * EightTimes(1) >> 56);
}

// Place of the first byte that passed a test; at least one did.
constexpr std::size_t FirstPassed(EightBytes test) {
    return static_cast<std::size_t>(std::countr_zero(test)) / 8;
}

}  // namespace quorvane
