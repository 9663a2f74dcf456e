#include <winerror.h>
#include <winreg.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>

#include "code_page.h"
#include "lasting.h"
#include "mime_types.h"
#include "registry_file.h"

using namespace quorvane::platform;

namespace {

constexpr std::u16string_view kContentType = u"Content Type";

// Paths of the keys that are open, by handle. Handles aren't used again, so that a stale one is
// found out.
std::mutex g_mutex;
Lasting<std::map<HKEY, std::u16string>> g_lastingKeys;
std::map<HKEY, std::u16string>& g_openKeys = g_lastingKeys.object;
ULONG_PTR g_lastHandle = 0;

HKEY AddKey(std::u16string path) {
    const std::lock_guard guard(g_mutex);
    const HKEY key = reinterpret_cast<HKEY>(g_lastHandle += 4);
    g_openKeys.emplace(key, std::move(path));
    return key;
}

// The path of `subKey` below the open key; false for a handle that isn't open.
bool PathOf(HKEY key, LPCWSTR subKey, std::u16string& path) {
    path.clear();
    if (key != HKEY_CLASSES_ROOT) {
        const std::lock_guard guard(g_mutex);
        const auto found = g_openKeys.find(key);
        if (found == g_openKeys.end()) return false;
        path = found->second;
    }
    const std::u16string_view below = subKey ? subKey : u"";
    if (!below.empty()) {
        if (!path.empty()) path += u'\\';
        path += below;
    }
    // A separator at the end names no further key.
    if (!path.empty() && path.back() == u'\\') path.pop_back();
    return true;
}

// The content type that the system has for a key such as .pdf; empty for any other key.
std::u16string SystemContentType(std::u16string_view path) {
    std::string extension;
    if (path.size() < 2 || path[0] != u'.' || path.find(u'\\') != path.npos ||
        !ToUtf8(path.substr(1), extension)) {
        return {};
    }
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return FromUtf8(ContentTypeOf(extension));
}

bool IsStored(std::u16string_view path) {
    bool stored = false;
    ReadRegistry([&](const RegistryTree& tree) { stored = tree.Find(path) != nullptr; });
    return stored;
}

bool Exists(std::u16string_view path) {
    return path.empty() || IsStored(path) || !SystemContentType(path).empty();
}

bool FindValue(std::u16string_view path, std::u16string_view name, RegistryValue& value) {
    bool found = false;
    ReadRegistry([&](const RegistryTree& tree) {
        const RegistryValues* values = tree.Find(path);
        if (!values) return;
        const auto stored = values->find(name);
        if (stored == values->end()) return;
        value = stored->second;
        found = true;
    });
    const RegistryNameLess less;
    if (found || less(name, kContentType) || less(kContentType, name)) return found;
    value = {REG_SZ, SystemContentType(path)};
    if (value.data.empty()) return false;
    value.data += u'\0';
    return true;
}

// Runs what may fail for want of memory only.
template <class Function>
LSTATUS Guarded(Function function) {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

}  // namespace

LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM, PHKEY result) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        if (!result) return ERROR_INVALID_PARAMETER;
        *result = nullptr;
        if (!PathOf(key, subKey, path)) return ERROR_INVALID_HANDLE;
        if (!Exists(path)) return ERROR_FILE_NOT_FOUND;
        *result = AddKey(std::move(path));
        return ERROR_SUCCESS;
    });
}

LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD, LPWSTR, DWORD, REGSAM,
                        LPSECURITY_ATTRIBUTES, PHKEY result, LPDWORD disposition) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        if (!result || !subKey) return ERROR_INVALID_PARAMETER;
        if (!PathOf(key, subKey, path)) return ERROR_INVALID_HANDLE;
        bool isNew = false;
        if (!path.empty() && !IsStored(path)) {
            const LSTATUS error = ChangeRegistry([&](RegistryTree& tree) {
                tree.Create(path, isNew);
                return ERROR_SUCCESS;
            });
            if (error != ERROR_SUCCESS) return error;
        }
        *result = AddKey(std::move(path));
        if (disposition) *disposition = isNew ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
        return ERROR_SUCCESS;
    });
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE data, LPDWORD size) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        RegistryValue value;
        if (data && !size) return ERROR_INVALID_PARAMETER;
        if (!PathOf(key, nullptr, path)) return ERROR_INVALID_HANDLE;
        if (!FindValue(path, name ? name : u"", value)) return ERROR_FILE_NOT_FOUND;
        const auto bytes = static_cast<DWORD>(value.data.size() * sizeof(WCHAR));
        if (type) *type = value.type;
        if (!size) return ERROR_SUCCESS;
        const bool fits = bytes <= *size;
        *size = bytes;
        if (!data) return ERROR_SUCCESS;
        if (!fits) return ERROR_MORE_DATA;
        std::copy_n(reinterpret_cast<const BYTE*>(value.data.data()), bytes, data);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        if ((type != REG_SZ && type != REG_EXPAND_SZ) || size % sizeof(WCHAR) != 0 ||
            (size != 0 && !data)) {
            return ERROR_INVALID_PARAMETER;
        }
        if (!PathOf(key, nullptr, path)) return ERROR_INVALID_HANDLE;
        RegistryValue value{type, std::u16string(size / sizeof(WCHAR), u'\0')};
        if (size != 0) std::memcpy(value.data.data(), data, size);
        return ChangeRegistry([&](RegistryTree& tree) {
            bool isNew;
            tree.Create(path, isNew).insert_or_assign(name ? name : u"", std::move(value));
            return ERROR_SUCCESS;
        });
    });
}

LSTATUS RegDeleteValueW(HKEY key, LPCWSTR name) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        if (!PathOf(key, nullptr, path)) return ERROR_INVALID_HANDLE;
        return ChangeRegistry([&](RegistryTree& tree) {
            return tree.RemoveValue(path, name ? name : u"") ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
        });
    });
}

LSTATUS RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
    return Guarded([&]() -> LSTATUS {
        std::u16string path;
        if (!subKey || !*subKey) return ERROR_INVALID_PARAMETER;
        if (!PathOf(key, subKey, path)) return ERROR_INVALID_HANDLE;
        return ChangeRegistry([&](RegistryTree& tree) {
            return tree.Remove(path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
        });
    });
}

LSTATUS RegCloseKey(HKEY key) {
    if (key == HKEY_CLASSES_ROOT) return ERROR_SUCCESS;
    const std::lock_guard guard(g_mutex);
    return g_openKeys.erase(key) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}
