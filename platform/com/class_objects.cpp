#include <ole2.h>

#include "apartment.h"
#include "global_interface_table.h"

using quorvane::platform::Apartment;
using quorvane::platform::GetGlobalInterfaceTable;

// Programs that aren't the component library have no classes of their own.
extern "C" __attribute__((weak)) HRESULT DllGetClassObject(REFCLSID, REFIID, LPVOID*);

HRESULT CoGetClassObject(REFCLSID rclsid, DWORD context, LPVOID, REFIID riid, LPVOID* object) {
    if (!object) return E_INVALIDARG;
    *object = nullptr;
    if (!Apartment::Current()) return CO_E_NOTINITIALIZED;
    if (!(context & CLSCTX_INPROC_SERVER) || !DllGetClassObject) return REGDB_E_CLASSNOTREG;
    const HRESULT hr = DllGetClassObject(rclsid, riid, object);
    return hr == CLASS_E_CLASSNOTAVAILABLE ? REGDB_E_CLASSNOTREG : hr;
}

HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN outer, DWORD context, REFIID riid,
                         LPVOID* object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (rclsid == CLSID_StdGlobalInterfaceTable) {
        if (!Apartment::Current()) return CO_E_NOTINITIALIZED;
        return outer ? CLASS_E_NOAGGREGATION : GetGlobalInterfaceTable(riid, object);
    }
    void* found = nullptr;
    HRESULT hr = CoGetClassObject(rclsid, context, nullptr, IID_IClassFactory, &found);
    if (FAILED(hr)) return hr;
    auto* const factory = static_cast<IClassFactory*>(found);
    hr = factory->CreateInstance(outer, riid, object);
    factory->Release();
    return hr;
}

void CoFreeUnusedLibraries() {}
