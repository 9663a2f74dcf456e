// Proxies and stubs: what carries calls of the interfaces into other apartments and processes.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace quorvane {

// When the library is loaded, behind ModuleAttach.
void AttachProxies();

// Gives *out the class object with which COM makes proxies and stubs of the four dual interfaces.
// A failure for every other class or interface, and then *out is null.
HRESULT GetProxyFactory(REFCLSID clsid, REFIID iid, void** out);

// False while a proxy or a stub is in use.
bool ProxiesCanUnload();

// Writes the interfaces' and the class object's registry keys, and removes them. To be called
// behind the same step of the type library, which names another marshaller for the interfaces.
HRESULT RegisterProxies();
HRESULT UnregisterProxies();

}  // namespace quorvane
