// The base of every COM class here: identity, reference count, late binding, error-info support.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <ole2.h>

#include "automation/boundary.h"
#include "automation/com_ptr.h"
#include "automation/counted.h"
#include "automation/type_info.h"

namespace quorvane {

// Implements IDispatch of a dual interface through its type information.
template <class Interface>
class DispatchImpl : public Interface {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (!count) return E_INVALIDARG;
        *count = 1;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (!info) return E_INVALIDARG;
        *info = nullptr;
        return index == 0 ? GetOwnTypeInfo(__uuidof(Interface), info) : DISP_E_BADINDEX;
    }

    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                               DISPID* ids) override {
        if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (!names || !ids) return E_INVALIDARG;
        ComPtr<ITypeInfo> info;
        const HRESULT hr = GetOwnTypeInfo(__uuidof(Interface), info.Receive());
        return FAILED(hr) ? hr : info->GetIDsOfNames(names, count, ids);
    }

    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
        if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (!arguments) return E_INVALIDARG;
        ComPtr<ITypeInfo> info;
        const HRESULT hr = GetOwnTypeInfo(__uuidof(Interface), info.Receive());
        if (FAILED(hr)) return hr;
        // Or a failure without error information would get that of an earlier one.
        SetErrorInfo(0, nullptr);
        return info->Invoke(static_cast<Interface*>(this), id, flags, arguments, result, exception,
                            badArgument);
    }
};

// An object with one dual interface, ISupportErrorInfo for it, and further interfaces. It lives on
// the heap, starts without references and deletes itself with the last one.
template <class Count, class Dual, class... Others>
class ComObject : public Counted<Count, DispatchImpl<Dual>, ISupportErrorInfo, Others...> {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        *out = Find(iid);
        if (!*out) return E_NOINTERFACE;
        this->AddRef();
        return S_OK;
    }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override {
        return iid == __uuidof(Dual) ? S_OK : S_FALSE;
    }

private:
    void* Find(REFIID iid) {
        if (iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) || iid == __uuidof(Dual)) {
            return static_cast<Dual*>(this);
        }
        if (iid == __uuidof(ISupportErrorInfo)) return static_cast<ISupportErrorInfo*>(this);
        void* found = nullptr;
        (void)((iid == __uuidof(Others) ? (found = static_cast<Others*>(this)) : nullptr) || ...);
        return found;
    }
};

// Makes an object of the class and asks it for the interface. What its constructor throws becomes a
// status, see Guarded.
template <class Class>
HRESULT CreateComObject(REFIID iid, void** out) noexcept {
    if (!out) return E_POINTER;
    *out = nullptr;
    return Guarded([&] {
        const ComPtr<Class> object(new Class);
        return object->QueryInterface(iid, out);
    });
}

}  // namespace quorvane
