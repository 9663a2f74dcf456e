// The stand-in for COM has proxies of its own, which know every IDispatch: none to serve here.
#include "server/proxies.h"

namespace quorvane {

void AttachProxies() {}

HRESULT GetProxyFactory(REFCLSID, REFIID, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

bool ProxiesCanUnload() {
    return true;
}

HRESULT RegisterProxies() {
    return S_OK;
}

HRESULT UnregisterProxies() {
    return S_OK;
}

}  // namespace quorvane
