// Header fields in the order in which they were added.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

struct HeaderField {
    std::string name;   // 8-bit text in the thread's ANSI code page
    std::string value;  // without the line end
};

class HeaderList {
public:
    // Makes room for that many fields more. Throws std::bad_alloc.
    void Reserve(std::size_t count) { fields_.reserve(fields_.size() + count); }

    // Appends the field; silently doesn't when the list can't grow. Throws std::bad_alloc when
    // there is no memory for the texts.
    void Append(std::string_view name, std::string_view value);

    // Index of the first field with that name, or npos.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t Find(std::string_view name) const;            // exact
    std::size_t FindIgnoreCase(std::string_view name) const;  // ASCII letters in any case

    void Remove(std::size_t index);

    const std::vector<HeaderField>& fields() const { return fields_; }

private:
    std::vector<HeaderField> fields_;
};

}  // namespace quorvane
