// Header fields in the order in which they were added.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "model/growable.h"

namespace quorvane {

// A field of a list, while that isn't changed.
struct HeaderField {
    std::string_view name;   // 8-bit text in the thread's ANSI code page
    std::string_view value;  // without the line end
};

// The texts of all fields stand in one string: a message has some 14 of them, and making and
// freeing two strings for each took a fifth of the time that a small message takes.
class HeaderList {
public:
    // Makes room for that many fields more. Throws std::bad_alloc.
    void Reserve(std::size_t count);

    // Appends the field; silently doesn't when the list can't grow. Throws std::bad_alloc when
    // there is no memory for the texts.
    void Append(std::string_view name, std::string_view value) {
        Append(name, [value](std::string& out) { out += value; });
    }
    // The same for a value that the function appends to the string that it is given.
    template <std::invocable<std::string&> WriteValue>
    void Append(std::string_view name, WriteValue writeValue) {
        const std::size_t start = texts_.size();
        texts_ += name;
        writeValue(texts_);
        AppendOrDrop(places_, Place{start, name.size(), texts_.size() - start});
    }

    // Index of the first field with that name, or npos.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t Find(std::string_view name) const;            // exact
    std::size_t FindIgnoreCase(std::string_view name) const;  // ASCII letters in any case

    void Remove(std::size_t index);

    std::size_t size() const { return places_.size(); }
    HeaderField operator[](std::size_t index) const {
        const Place& place = places_[index];
        const char* const name = texts_.data() + place.start;
        return {{name, place.nameSize}, {name + place.nameSize, place.size - place.nameSize}};
    }

private:
    struct Place {
        std::size_t start;
        std::size_t nameSize;
        std::size_t size;  // of name and value
    };

    std::string texts_;
    std::vector<Place> places_;  // in the order of the texts
};

}  // namespace quorvane
