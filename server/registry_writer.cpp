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

    // Of any type; nothing when there is no such value.
    std::optional<RegistryValue> Read(const WCHAR* name) const {
        RegistryValue value;
        DWORD size = 0;
        LSTATUS error = RegQueryValueExW(key_, name, nullptr, &value.type, nullptr, &size);
        if (error != ERROR_SUCCESS) return std::nullopt;
        value.bytes.resize(size);
        error = RegQueryValueExW(key_, name, nullptr, &value.type, value.bytes.data(), &size);
        if (error != ERROR_SUCCESS) return std::nullopt;
        value.bytes.resize(size);
        return value;
    }

    void Restore(const WCHAR* name, const std::optional<RegistryValue>& value) const {
        if (value) {
            RegSetValueExW(key_, name, 0, value->type, value->bytes.data(),
                           static_cast<DWORD>(value->bytes.size()));
        } else {
            RegDeleteValueW(key_, name);
        }
    }

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
        if (written->isNewKey) {
            RegDeleteTreeW(HKEY_CLASSES_ROOT, written->key.c_str());
        } else if (written->hasValue) {
            Key key;
            bool isNew = false;
            if (key.Create(written->key, isNew) != ERROR_SUCCESS) continue;
            key.Restore(written->name, written->before);
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
    std::optional<RegistryValue> before = opened.Read(nullptr);
    const bool hasValue = before.has_value();
    written_.push_back({key, nullptr, false, hasValue, std::move(before)});
}

HRESULT RegistryWriter::Write(const RegistryEntry& entry) {
    written_.reserve(written_.size() + 1);  // what is written is never forgotten for want of memory
    Written written{entry.key, entry.name, false, entry.data.has_value(), {}};
    Key key;
    const LSTATUS error = key.Create(entry.key, written.isNewKey);
    if (error != ERROR_SUCCESS) return StatusOf(error);
    if (!written.isNewKey && written.hasValue) written.before = key.Read(entry.name);
    written_.push_back(std::move(written));
    return entry.data ? StatusOf(key.Set(entry.name, *entry.data)) : S_OK;
}

}  // namespace quorvane
