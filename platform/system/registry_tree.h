// Registry keys and values as a value of their own, and the text form in which they are stored.
#pragma once

#include <windef.h>

#include <map>
#include <string>
#include <string_view>

namespace quorvane::platform {

struct RegistryValue {
    DWORD type = 0;
    std::u16string data;  // as it was given, with or without a terminating NUL
};

// A key or value name; two that differ only in the case of ASCII letters are the same.
struct RegistryNameLess {
    using is_transparent = void;
    bool operator()(std::u16string_view a, std::u16string_view b) const;
};

using RegistryValues = std::map<std::u16string, RegistryValue, RegistryNameLess>;

// Keys by their full path, names separated by '\'. Every key's parents are there too.
class RegistryTree {
public:
    const RegistryValues* Find(std::u16string_view path) const;
    // The key's values; makes the key and its parents as needed and tells whether it was new.
    RegistryValues& Create(std::u16string_view path, bool& isNew);
    // Removes the key with everything below it; false when there is no such key.
    bool Remove(std::u16string_view path);

    // False when there is no such value.
    bool RemoveValue(std::u16string_view path, std::u16string_view name);

    // ASCII lines: a heading, then each key followed by its values.
    std::string Serialize() const;
    // Replaces the tree by what the text says; leaves it empty and returns false when the text
    // isn't whole.
    bool Parse(std::string_view text);

private:
    std::map<std::u16string, RegistryValues, RegistryNameLess> keys_;
};

}  // namespace quorvane::platform
