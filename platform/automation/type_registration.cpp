#include "type_registration.h"

#include <winreg.h>

#include <string>

#include "type_data.h"

namespace quorvane::platform {
namespace {

// The marshallers that go by type information, of automation interfaces and of event interfaces.
constexpr char16_t kAutomationMarshaller[] = u"{00020424-0000-0000-C000-000000000046}";
constexpr char16_t kDispatchMarshaller[] = u"{00020420-0000-0000-C000-000000000046}";

std::u16string GuidText(REFGUID guid) {
    OLECHAR text[40];
    StringFromGUID2(guid, text, 40);
    return text;
}

// A number in text of the base, without leading zeros.
std::u16string NumberText(DWORD number, DWORD base) {
    std::u16string text;
    do {
        text.insert(text.begin(), u"0123456789abcdef"[number % base]);
        number /= base;
    } while (number != 0);
    return text;
}

std::u16string VersionText() {
    return NumberText(kTypeLibrary.majorVersion, 16) + u'.' +
           NumberText(kTypeLibrary.minorVersion, 16);
}

std::u16string LibraryKey() {
    return u"TypeLib\\" + GuidText(kTypeLibrary.guid);
}

std::u16string InterfaceKey(const TypeData& type) {
    return u"Interface\\" + GuidText(type.guid);
}

// Folder of a path, without the separator.
std::u16string Folder(const std::u16string& path) {
    const std::size_t end = path.find_last_of(u"\\/");
    return end == std::u16string::npos ? std::u16string() : path.substr(0, end);
}

// Sets values one after the other until one fails.
class Registrar {
public:
    void Set(const std::u16string& path, const std::u16string& data, LPCWSTR name = nullptr) {
        if (error_ != ERROR_SUCCESS) return;
        HKEY key = nullptr;
        error_ = RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr,
                                 REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr);
        if (error_ != ERROR_SUCCESS) return;
        error_ = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(data.c_str()),
                                static_cast<DWORD>((data.size() + 1) * sizeof(WCHAR)));
        RegCloseKey(key);
    }

    HRESULT result() const { return error_ == ERROR_SUCCESS ? S_OK : TYPE_E_REGISTRYACCESS; }

private:
    LSTATUS error_ = ERROR_SUCCESS;
};

}  // namespace

HRESULT RegisterTypeLibrary(LPCOLESTR path) {
    Registrar registrar;
    const std::u16string version = LibraryKey() + u'\\' + VersionText();
    registrar.Set(version, kTypeLibrary.help);
    registrar.Set(version + u'\\' + NumberText(kTypeLibrary.lcid, 16) + u"\\win64", path);
    registrar.Set(version + u"\\FLAGS", u"0");
    registrar.Set(version + u"\\HELPDIR", Folder(path));
    for (const TypeData& type : kTypeLibrary.types) {
        if (type.kind != TKIND_DISPATCH) continue;
        const std::u16string key = InterfaceKey(type);
        const bool dual = type.flags & TYPEFLAG_FDUAL;
        registrar.Set(key, type.name);
        registrar.Set(key + u"\\ProxyStubClsid32",
                      dual ? kAutomationMarshaller : kDispatchMarshaller);
        registrar.Set(key + u"\\TypeLib", GuidText(kTypeLibrary.guid));
        registrar.Set(key + u"\\TypeLib", VersionText(), u"Version");
    }
    return registrar.result();
}

HRESULT UnregisterTypeLibrary() {
    if (RegDeleteTreeW(HKEY_CLASSES_ROOT, LibraryKey().c_str()) != ERROR_SUCCESS) {
        return TYPE_E_REGISTRYACCESS;
    }
    HRESULT result = S_OK;
    for (const TypeData& type : kTypeLibrary.types) {
        if (type.kind != TKIND_DISPATCH) continue;
        const LSTATUS error = RegDeleteTreeW(HKEY_CLASSES_ROOT, InterfaceKey(type).c_str());
        if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) result = TYPE_E_REGISTRYACCESS;
    }
    return result;
}

}  // namespace quorvane::platform
