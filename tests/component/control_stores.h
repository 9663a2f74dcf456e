// Where containers keep controls: streams and property bags.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include <algorithm>
#include <map>
#include <string>

#include "automation/wide_string.h"

namespace quorvane {

// A part of a test's container: lives on the test's stack, which outlives the control.
template <class... Interfaces>
class OnStack : public Interfaces... {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        (void)((iid == __uuidof(Interfaces) && (*out = static_cast<Interfaces*>(this))) || ...);
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }

    ULONG references = 0;
};

// Keeps bytes; gives and takes one at a time when asked to.
class MemoryStream final : public OnStack<IStream> {
public:
    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override {
        const auto left = static_cast<ULONG>(bytes.size() - position);
        *read = std::min({size, left, piece});
        bytes.copy(static_cast<char*>(buffer), *read, position);
        position += *read;
        return *read == size ? S_OK : S_FALSE;
    }
    STDMETHODIMP Write(const void* buffer, ULONG size, ULONG* written) override {
        *written = std::min(size, room);
        bytes.append(static_cast<const char*>(buffer), *written);
        return S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

    std::string bytes;
    std::size_t position = 0;
    ULONG piece = 0xFFFF;
    ULONG room = 0xFFFF;
};

// Values are given in the type in which they stand here.
class PropertyBag final : public OnStack<IPropertyBag> {
public:
    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
        const auto found = values.find(name);
        if (found == values.end()) return E_INVALIDARG;
        return VariantCopy(value, &found->second);
    }
    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override {
        values[name] = *value;
        return S_OK;
    }

    std::map<WideString, VARIANT> values;
};

}  // namespace quorvane
