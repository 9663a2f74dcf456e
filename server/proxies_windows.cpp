#include "automation/module.h"
#include "server/proxies.h"

// Of proxies.c. By custom the class has the identifier of one of the interfaces: of that which
// widl's sorted tables begin with, IMailMessage.
STDAPI ProxyDllGetClassObject(REFCLSID clsid, REFIID iid, void** out);
STDAPI ProxyDllCanUnloadNow();
STDAPI ProxyDllRegisterServer();
STDAPI ProxyDllUnregisterServer();
extern "C" BOOL WINAPI ProxyDllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace quorvane {

void AttachProxies() {
    ProxyDllMain(ModuleInstance(), DLL_PROCESS_ATTACH, nullptr);
}

HRESULT GetProxyFactory(REFCLSID clsid, REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    return ProxyDllGetClassObject(clsid, iid, out);
}

bool ProxiesCanUnload() {
    return ProxyDllCanUnloadNow() == S_OK;
}

HRESULT RegisterProxies() {
    return ProxyDllRegisterServer();
}

HRESULT UnregisterProxies() {
    // The type library has taken the interfaces' keys with it, and the system's function wants to
    // find all that it removes.
    const HRESULT hr = ProxyDllRegisterServer();
    return FAILED(hr) ? hr : ProxyDllUnregisterServer();
}

}  // namespace quorvane
