#include "proxy.h"

#include <ole2.h>

#include <new>

#include "carried_arguments.h"

namespace quorvane::platform {
namespace {

// Only proxies answer to it.
constexpr IID kProxyIdentifier = {
    0x7a5cd15c, 0x5f4b, 0x4e0f, {0x9c, 0x0b, 0x61, 0x2e, 0x8d, 0x5a, 0x3e, 0x47}};

}  // namespace

bool Proxy::TakeReference(IUnknown* object, ObjectReference& reference) {
    void* found = nullptr;
    if (FAILED(object->QueryInterface(kProxyIdentifier, &found))) return false;
    const Held<Proxy> proxy(static_cast<Proxy*>(found));
    reference = proxy->target_;
    return true;
}

HRESULT Proxy::QueryInterface(REFIID riid, void** object) {
    if (!object) return E_POINTER;
    const bool known = riid == IID_IUnknown || riid == kProxyIdentifier ||
                       (riid == IID_IDispatch && target_.hasDispatch());
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG Proxy::AddRef() {
    return owner_->proxies().AddRef(target_.key());
}

ULONG Proxy::Release() {
    // The table stays, whatever goes with the proxy.
    const std::shared_ptr<Apartment> owner = owner_;
    return owner->proxies().Release(target_.key());
}

HRESULT Proxy::Carry(const std::function<HRESULT(IDispatch&)>& call) {
    if (Apartment::Current() != owner_) return RPC_E_WRONG_THREAD;
    const auto [home, number] = target_.key();
    try {
        return home->Run([home = home, number = number, &call] {
            const auto object = home->objects().Find(number);
            return object ? call(*object->dispatch) : RPC_E_DISCONNECTED;
        });
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT Proxy::GetTypeInfoCount(UINT* count) {
    return Carry([count](IDispatch& object) { return object.GetTypeInfoCount(count); });
}

HRESULT Proxy::GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) {
    return Carry([=](IDispatch& object) { return object.GetTypeInfo(index, lcid, info); });
}

HRESULT Proxy::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) {
    return Carry([&riid, names, count, lcid, ids](IDispatch& object) {
        return object.GetIDsOfNames(riid, names, count, lcid, ids);
    });
}

HRESULT Proxy::Invoke(DISPID member, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* argumentInError) {
    if (!params) return E_INVALIDARG;
    try {
        CarriedArguments arguments;
        HRESULT hr = arguments.Pack(*params);
        if (FAILED(hr)) return hr;
        CarriedValue carriedResult;
        const HRESULT outcome = Carry([&](IDispatch& object) {
            return arguments.Invoke(object, member, riid, lcid, flags,
                                    result ? &carriedResult : nullptr, exception, argumentInError);
        });
        hr = arguments.GiveBack();
        if (result) {
            VariantInit(result);
            if (SUCCEEDED(hr)) hr = carriedResult.Unpack(*result);
        }
        return FAILED(hr) ? hr : outcome;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace quorvane::platform
