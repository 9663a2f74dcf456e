#include "global_interface_table.h"

#include <ole2.h>

#include <map>
#include <mutex>
#include <new>

#include "object_reference.h"
#include "platform/system/lasting.h"

namespace quorvane::platform {
namespace {

// Lives as long as the library; reference counts mean nothing to it.
class GlobalInterfaceTable final : public IGlobalInterfaceTable {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        const bool known = riid == IID_IUnknown || riid == IID_IGlobalInterfaceTable;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown* object, REFIID riid,
                                                        DWORD* cookie) override {
        if (!object || !cookie) return E_INVALIDARG;
        if (!Apartment::Current()) return CO_E_NOTINITIALIZED;
        if (riid != IID_IUnknown && riid != IID_IDispatch) return E_NOINTERFACE;
        try {
            ObjectReference reference;
            const HRESULT hr = ObjectReference::To(object, reference);
            if (FAILED(hr)) return hr;
            if (riid == IID_IDispatch && !reference.hasDispatch()) return E_NOINTERFACE;
            *cookie = Enter(std::move(reference));
            return S_OK;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

    HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) override {
        ObjectReference revoked;  // goes after the lock
        const std::lock_guard lock(mutex_);
        const auto found = references_.find(cookie);
        if (found == references_.end()) return E_INVALIDARG;
        revoked = std::move(found->second);
        references_.erase(found);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID riid,
                                                     void** object) override {
        if (!object) return E_INVALIDARG;
        *object = nullptr;
        try {
            const ObjectReference reference = Find(cookie);
            return reference ? reference.Get(riid, object) : E_INVALIDARG;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

private:
    DWORD Enter(ObjectReference reference) {
        const std::lock_guard lock(mutex_);
        do {
            ++lastCookie_;
        } while (lastCookie_ == 0 || references_.contains(lastCookie_));
        references_.emplace(lastCookie_, std::move(reference));
        return lastCookie_;
    }

    ObjectReference Find(DWORD cookie) {
        const std::lock_guard lock(mutex_);
        const auto found = references_.find(cookie);
        return found == references_.end() ? ObjectReference() : found->second;
    }

    std::mutex mutex_;
    DWORD lastCookie_ = 0;
    std::map<DWORD, ObjectReference> references_;
};

Lasting<GlobalInterfaceTable> g_table;

}  // namespace

HRESULT GetGlobalInterfaceTable(REFIID riid, void** table) {
    return g_table.object.QueryInterface(riid, table);
}

}  // namespace quorvane::platform
