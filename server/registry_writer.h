// Writes to the registry that are kept as a whole or not at all.
#pragma once

#include <windows.h>

#include <optional>
#include <vector>

#include "server/registry_entries.h"

namespace quorvane {

struct RegistryValue {
    DWORD type = 0;
    std::vector<BYTE> bytes;
};

// Writes entries below HKEY_CLASSES_ROOT. When it goes without Keep it takes back what it has
// written: keys and values that it made are removed, values that it replaced are what they were.
// One thread.
class RegistryWriter {
public:
    RegistryWriter() = default;
    RegistryWriter(const RegistryWriter&) = delete;
    RegistryWriter& operator=(const RegistryWriter&) = delete;
    ~RegistryWriter();

    // Writes one after the other up to the first that fails, and returns its status.
    HRESULT Write(const RegistryEntries& entries);

    // The key's default value, if it has one, will be what it is now, whoever
    // replaces it.
    void Protect(const WideString& key);

    void Keep() { written_.clear(); }

private:
    struct Written {
        WideString key;
        const WCHAR* name;
        bool isNewKey;
        bool hasValue;                        // besides the key
        std::optional<RegistryValue> before;  // nothing: the value is new
    };

    HRESULT Write(const RegistryEntry& entry);

    std::vector<Written> written_;
};

}  // namespace quorvane
