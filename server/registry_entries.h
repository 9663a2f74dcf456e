// The keys and values of the registration, as data. All keys stand below HKEY_CLASSES_ROOT.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "automation/wide_string.h"
#include "server/classes.h"

namespace quorvane {

struct RegistryEntry {
    WideString key;
    const WCHAR* name = nullptr;     // null for the key's default value
    std::optional<WideString> data;  // a key without a value when absent
};
using RegistryEntries = std::vector<RegistryEntry>;

// What differs from class to class and from place to place.
struct ClassPlace {
    WideString clsid;
    WideString library;  // identifier of the type library
    WideString module;   // full path of the server
};

// The identity under which all classes run.
RegistryEntries ApplicationEntries();
RegistryEntries ClassEntries(const CreatableClass& registered, const ClassPlace& place);

// The keys that belong to one class alone, to remove with everything below them.
std::array<WideString, 3> ClassKeys(const CreatableClass& registered, const WideString& clsid);

}  // namespace quorvane
