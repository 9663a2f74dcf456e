// The library's entry points: what the system's loader, COM and regsvr32 call.
#include <windows.h>
#include <olectl.h>

#include "automation/boundary.h"
#include "automation/module.h"
#include "server/class_factory.h"
#include "server/registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) quorvane::ModuleAttach(instance);
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
    return quorvane::GetClassFactory(clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    return quorvane::ModuleCanUnload() ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    return quorvane::Guarded(quorvane::RegisterServer);
}

STDAPI DllUnregisterServer() {
    return quorvane::Guarded(quorvane::UnregisterServer);
}
