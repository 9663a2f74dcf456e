// What stands for an object in another apartment.
#pragma once

#include <oaidl.h>

#include <functional>

#include "object_reference.h"

namespace quorvane::platform {

// Carries the calls of IDispatch into the object's apartment. Belongs to the apartment that it was
// made for: RPC_E_WRONG_THREAD for calls from another.
// Differs from Windows: no other interface than IUnknown and IDispatch has a proxy; type
// information comes back as the object gave it.
class Proxy final : public IDispatch {
public:
    Proxy(std::shared_ptr<Apartment> owner, ObjectReference target)
        : owner_(std::move(owner)), target_(std::move(target)) {}

    // Refers to the object behind a proxy; false when `object` is none.
    static bool TakeReference(IUnknown* object, ObjectReference& reference);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID riid, LCID lcid, WORD flags,
                                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentInError) override;

private:
    // Calls the object in its apartment. What the call refers to stays valid: its caller waits.
    HRESULT Carry(const std::function<HRESULT(IDispatch&)>& call);

    std::shared_ptr<Apartment> owner_;
    ObjectReference target_;
};

}  // namespace quorvane::platform
