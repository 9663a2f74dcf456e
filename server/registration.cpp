#include "server/registration.h"

#include <fmt/format.h>
#include <oleauto.h>

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/module.h"
#include "automation/wide_string.h"
#include "server/classes.h"
#include "server/proxies.h"
#include "server/registry_entries.h"
#include "server/registry_writer.h"

namespace quorvane {
namespace {

// Registry functions and the type library's registration read the thread's locale.
class SystemLocale {
public:
    SystemLocale() : saved_(GetThreadLocale()) { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }
    ~SystemLocale() { SetThreadLocale(saved_); }
    SystemLocale(const SystemLocale&) = delete;
    SystemLocale& operator=(const SystemLocale&) = delete;

private:
    LCID saved_;
};

WideString GuidText(REFGUID guid) {
    constexpr int kCapacity = 40;
    WCHAR text[kCapacity] = {};
    StringFromGUID2(guid, text, kCapacity);
    return text;
}

HRESULT StatusOf(LSTATUS error) {
    return error == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}

HRESULT RemoveTree(const WideString& key) {
    const LSTATUS error = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
    return error == ERROR_FILE_NOT_FOUND ? S_OK : StatusOf(error);
}

bool KeyExists(const WideString& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(key);
    return true;
}

// Of all versions.
WideString TypeLibraryRoot() {
    return OLESTR("TypeLib\\") + GuidText(LIBID_QuorvaneLib);
}

WideString TypeLibraryKey(const TLIBATTR& library) {
    const std::string place =
        fmt::format("\\{:x}.{:x}\\{:x}", library.wMajorVerNum, library.wMinorVerNum, library.lcid);
    return TypeLibraryRoot() + WidenBytes(place);
}

HRESULT UnregisterTypeLibrary(const WideString& module) {
    ComPtr<ITypeLib> library;
    HRESULT hr = LoadTypeLibEx(module.c_str(), REGKIND_NONE, library.Receive());
    if (FAILED(hr)) return hr;
    TLIBATTR* attributes = nullptr;
    hr = library->GetLibAttr(&attributes);
    if (FAILED(hr)) return hr;
    // UnRegisterTypeLib has one status for a library that isn't registered and for a refusal.
    // Another version of it under the same identifier is none of this one's business.
    if (KeyExists(TypeLibraryKey(*attributes))) {
        hr = UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                               attributes->lcid, attributes->syskind);
    }
    library->ReleaseTLibAttr(attributes);
    return hr;
}

// The type library, then the proxies. When one fails, both are taken back, or the library is left
// to `writer` if there was a version of it before.
HRESULT RegisterInterfaces(const WideString& module, RegistryWriter& writer) {
    const bool isNew = !KeyExists(TypeLibraryRoot());
    for (const WCHAR* place : {OLESTR("\\1.0\\409\\win64"), OLESTR("\\1.0\\HELPDIR")}) {
        writer.Protect(TypeLibraryRoot() + place);
    }
    ComPtr<ITypeLib> library;
    HRESULT hr = LoadTypeLibEx(module.c_str(), REGKIND_REGISTER, library.Receive());
    if (SUCCEEDED(hr)) hr = RegisterProxies();
    if (FAILED(hr) && isNew) {
        UnregisterTypeLibrary(module);
        UnregisterProxies();
        RemoveTree(TypeLibraryRoot());
    }
    return hr;
}

}  // namespace

HRESULT RegisterServer() {
    const SystemLocale locale;
    const WideString module = ModulePath();
    if (module.empty()) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    RegistryWriter writer;
    HRESULT hr = writer.Write(ApplicationEntries());
    for (const CreatableClass& registered : kClasses) {
        if (FAILED(hr)) return hr;
        hr = writer.Write(ClassEntries(
            registered, {GuidText(*registered.clsid), GuidText(LIBID_QuorvaneLib), module}));
    }
    if (SUCCEEDED(hr)) hr = RegisterInterfaces(module, writer);
    if (SUCCEEDED(hr)) writer.Keep();
    return hr;
}

HRESULT UnregisterServer() {
    const SystemLocale locale;
    HRESULT first = S_OK;
    const auto keep = [&first](HRESULT hr) {
        if (FAILED(hr) && SUCCEEDED(first)) first = hr;
    };
    for (const CreatableClass& registered : kClasses) {
        for (const WideString& key : ClassKeys(registered, GuidText(*registered.clsid))) {
            keep(RemoveTree(key));
        }
    }
    keep(UnregisterTypeLibrary(ModulePath()));
    keep(UnregisterProxies());
    return first;
}

}  // namespace quorvane
