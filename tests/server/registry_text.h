// Keys and values of the registry as lines of text.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

struct RegistryLine {
    std::string key;
    std::string name;                 // empty for the default value
    std::optional<std::string> data;  // absent when the key has no value
};

// What registry.txt says that registration writes, with the library's path in its places.
std::vector<RegistryLine> ReviewedRegistry(const std::string& module);

std::string TextOf(const RegistryLine& line);

// Read below HKEY_CLASSES_ROOT. Names of keys and values are ASCII, what is read is UTF-8.
bool KeyExists(std::string_view key);
std::optional<std::string> ReadValue(std::string_view key, std::string_view name);

}  // namespace quorvane
