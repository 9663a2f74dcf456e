#include "server/registry_writer.h"

namespace quorvane {
namespace {

// An open key, closed with this.
class Key {
public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (key_) RegCloseKey(key_);
    }

    LSTATUS Open(const WideString& path) {
        return RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key_);
    }

    LSTATUS Create(const WideString& path, bool& isNew) {
        DWORD disposition = 0;
        const LSTATUS error =
            RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_READ | KEY_WRITE, nullptr, &key_, &disposition);
        isNew = error == ERROR_SUCCESS && disposition == REG_CREATED_NEW_KEY;
        return error;
    }

    std::optional<WideString> Read(const WCHAR* name) const {
        DWORD type = 0;
        DWORD size = 0;
        LSTATUS error = RegQueryValueExW(key_, name, nullptr, &type, nullptr, &size);
        if (error != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
        WideString data(size / sizeof(WCHAR), WCHAR(0));
        error = RegQueryValueExW(key_, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                                 &size);
        if (error != ERROR_SUCCESS) return std::nullopt;
        data.resize(data.find(WCHAR(0)) == WideString::npos ? data.size() : data.find(WCHAR(0)));
        return data;
    }

    bool Has(const WCHAR* name) const {
        return RegQueryValueExW(key_, name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
    }

    void Remove(const WCHAR* name) const { RegDeleteValueW(key_, name); }

    LSTATUS Set(const WCHAR* name, const WideString& data) const {
        const auto size = static_cast<DWORD>((data.size() + 1) * sizeof(WCHAR));
        return RegSetValueExW(key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(data.c_str()),
                              size);
    }

private:
    HKEY key_ = nullptr;
};

HRESULT StatusOf(LSTATUS error) {
    return error == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}

}  // namespace

RegistryWriter::~RegistryWriter() {
    for (auto written = written_.rbegin(); written != written_.rend(); ++written) {
        const RegistryEntry& before = written->before;
        if (written->isNewKey) {
            RegDeleteTreeW(HKEY_CLASSES_ROOT, before.key.c_str());
        } else if (before.data || written->isNewValue) {
            Key key;
            bool isNew = false;
            if (key.Create(before.key, isNew) != ERROR_SUCCESS) continue;
            if (before.data) {
                key.Set(before.name, *before.data);
            } else {
                key.Remove(before.name);
            }
        }
    }
}

HRESULT RegistryWriter::Write(const RegistryEntries& entries) {
    for (const RegistryEntry& entry : entries) {
        const HRESULT hr = Write(entry);
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

void RegistryWriter::Protect(const WideString& key) {
    Key opened;
    if (opened.Open(key) != ERROR_SUCCESS) return;
    written_.push_back({.before = {key, nullptr, opened.Read(nullptr)}});
}

HRESULT RegistryWriter::Write(const RegistryEntry& entry) {
    written_.reserve(written_.size() + 1);  // what is written is never forgotten for want of memory
    Written written{.before = {entry.key, entry.name, {}}};
    Key key;
    const LSTATUS error = key.Create(entry.key, written.isNewKey);
    if (error != ERROR_SUCCESS) return StatusOf(error);
    if (!written.isNewKey && entry.data) {
        written.before.data = key.Read(entry.name);
        written.isNewValue = !key.Has(entry.name);
    }
    written_.push_back(std::move(written));
    return entry.data ? StatusOf(key.Set(entry.name, *entry.data)) : S_OK;
}

}  // namespace quorvane
