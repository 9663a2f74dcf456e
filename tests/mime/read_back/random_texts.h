// Texts and bytes for generated messages: much of what real ones hold, and more of what breaks
// composers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "automation/wide_string.h"

namespace quorvane::testing {

// The same numbers for the same seed and message, on every machine.
class Chance {
public:
    Chance(std::uint64_t seed, std::uint64_t message)
        : state_(seed * 0x9E3779B97F4A7C15u ^ message * 0xD1342543DE82EF95u) {}

    std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(Next() % limit); }
    std::size_t From(std::size_t first, std::size_t last) {
        return first + Below(last - first + 1);
    }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    template <class Item, std::size_t size>
    const Item& OneOf(const std::array<Item, size>& items) {
        return items[Below(size)];
    }

private:
    // SplitMix64.
    std::uint64_t Next() {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t value = state_;
        value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9u;
        value = (value ^ value >> 27) * 0x94D049BB133111EBu;
        return value ^ value >> 31;
    }

    std::uint64_t state_;
};

enum class Letters { Ascii, Latin1, All };  // All: with surrogates, paired and not

// Lines of a body: dots, blanks at ends, long words, every kind of line end, boundaries that are
// none, control characters and, now and then, a zero.
WideString BodyText(Chance& chance, Letters letters);

// A subject or a name: with what wants quotes or escapes, control characters and line breaks.
WideString HeaderText(Chance& chance);

// The content of a file: text, or any bytes. Perhaps empty.
std::string FileBytes(Chance& chance);

// The value of an extra header field: long, folded well or badly, beyond ASCII.
std::string FieldValue(Chance& chance);

}  // namespace quorvane::testing
