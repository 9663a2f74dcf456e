// Identifiers as text, and ProgIDs.
#include <ole2.h>
#include <winreg.h>

#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace {

constexpr int kTextLength = 38;  // {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}

// The value of a hexadecimal digit; -1 for any other character.
constexpr int Digit(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
}

// The digits where the form has an X; false when the text doesn't have the form.
bool ParseGuid(std::u16string_view text, GUID& guid) {
    constexpr std::u16string_view kForm = u"{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
    BYTE bytes[sizeof(GUID)] = {};
    if (text.size() != kForm.size()) return false;
    for (std::size_t i = 0, digits = 0; i < text.size(); ++i) {
        if (kForm[i] != u'X') {
            if (text[i] != kForm[i]) return false;
            continue;
        }
        const int digit = Digit(text[i]);
        if (digit < 0) return false;
        BYTE& byte = bytes[digits++ / 2];
        byte = static_cast<BYTE>(byte << 4 | digit);
    }
    guid.Data1 = static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
                 static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
    guid.Data2 = static_cast<uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid.Data4, bytes + 8, sizeof guid.Data4);
    return true;
}

// The default value of a key below HKEY_CLASSES_ROOT; empty when there is none.
std::u16string DefaultValue(const std::u16string& path) {
    HKEY key;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return {};
    }
    WCHAR text[MAX_PATH];
    DWORD size = sizeof text - sizeof(WCHAR);
    const LSTATUS error =
        RegQueryValueExW(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(key);
    if (error != ERROR_SUCCESS) return {};
    text[size / sizeof(WCHAR)] = u'\0';
    return text;
}

}  // namespace

int StringFromGUID2(REFGUID guid, LPOLESTR text, int size) {
    if (!text || size <= kTextLength) return 0;
    char digits[kTextLength + 1];
    const BYTE* const d = guid.Data4;
    std::snprintf(digits, sizeof digits, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(guid.Data1), static_cast<unsigned>(guid.Data2),
                  static_cast<unsigned>(guid.Data3), d[0], d[1], d[2], d[3], d[4], d[5], d[6],
                  d[7]);
    for (int i = 0; i <= kTextLength; ++i) text[i] = static_cast<OLECHAR>(digits[i]);
    return kTextLength + 1;
}

HRESULT CLSIDFromProgID(LPCOLESTR progId, LPCLSID clsid) {
    if (!progId || !clsid) return E_INVALIDARG;
    *clsid = CLSID_NULL;
    try {
        const std::u16string text = DefaultValue(std::u16string(progId) + u"\\CLSID");
        return ParseGuid(text, *clsid) ? S_OK : CO_E_CLASSSTRING;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progId) {
    if (!progId) return E_INVALIDARG;
    *progId = nullptr;
    OLECHAR identifier[kTextLength + 1];
    StringFromGUID2(clsid, identifier, kTextLength + 1);
    try {
        const std::u16string text =
            DefaultValue(u"CLSID\\" + std::u16string(identifier) + u"\\ProgID");
        if (text.empty()) return REGDB_E_CLASSNOTREG;
        const std::size_t size = (text.size() + 1) * sizeof(OLECHAR);
        *progId = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
        if (!*progId) return E_OUTOFMEMORY;
        std::memcpy(*progId, text.c_str(), size);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}
