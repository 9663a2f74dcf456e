// An object that counts its references, to see who holds it and who lets go.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <atomic>

class CountedObject : public IDispatch {
public:
    // False makes an object that is an IUnknown only.
    explicit CountedObject(bool dispatch = true) : dispatch_(dispatch) {}
    virtual ~CountedObject() = default;

    LONG references() const { return references_; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || (dispatch_ && iid == IID_IDispatch);
        *object = known ? this : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references_); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references_); }

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    bool dispatch_;
    std::atomic<LONG> references_{0};  // the test itself holds none
};
