// The library's entry points: what the system's loader, COM and regsvr32 call.
#include <windows.h>
#include <olectl.h>

#include "automation/boundary.h"
#include "automation/module.h"
#include "server/class_factory.h"
#include "server/proxies.h"
#include "server/registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        quorvane::ModuleAttach(instance);
        quorvane::AttachProxies();
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
    const HRESULT hr = quorvane::GetProxyFactory(clsid, iid, out);
    return hr == S_OK ? hr : quorvane::GetClassFactory(clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    const bool isUnused = quorvane::ProxiesCanUnload() && quorvane::ModuleCanUnload();
    return isUnused ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    return quorvane::Guarded(quorvane::RegisterServer);
}

STDAPI DllUnregisterServer() {
    return quorvane::Guarded(quorvane::UnregisterServer);
}
