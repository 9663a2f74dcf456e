#include "tests/server/unload/library.h"

namespace quorvane::testing {
namespace {

HMODULE Library() {
    return GetModuleHandleW(L"Quorvane.dll");
}

}  // namespace

const bool kGoesAfterItsThread = false;

// The registered library is the one in question.
IUnknown* CreateObject(const char*, REFCLSID clsid, REFIID iid) {
    void* object = nullptr;
    CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, &object);
    return static_cast<IUnknown*>(object);
}

HRESULT CanUnloadNow() {
    using Function = HRESULT(WINAPI*)();
    const auto function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(Library(), "DllCanUnloadNow")));
    return function ? function() : E_FAIL;
}

void UnloadIfUnused() {
    CoFreeUnusedLibrariesEx(0, 0);
}

bool IsLoaded() {
    return Library() != nullptr;
}

}  // namespace quorvane::testing
