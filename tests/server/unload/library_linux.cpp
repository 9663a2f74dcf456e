#include <dlfcn.h>

#include <string>

#include "tests/server/unload/library.h"

namespace quorvane::testing {
namespace {

std::string g_path;
void* g_library = nullptr;

template <class Function>
Function* Symbol(const char* name) {
    return reinterpret_cast<Function*>(dlsym(g_library, name));
}

}  // namespace

const bool kGoesAfterItsThread = true;

IUnknown* CreateObject(const char* library, REFCLSID clsid, REFIID iid) {
    g_path = library;
    if (!g_library) g_library = dlopen(library, RTLD_NOW);
    if (!g_library) return nullptr;
    void* factory = nullptr;
    void* object = nullptr;
    Symbol<decltype(DllGetClassObject)>("DllGetClassObject")(clsid, IID_IClassFactory, &factory);
    if (!factory) return nullptr;
    static_cast<IClassFactory*>(factory)->CreateInstance(nullptr, iid, &object);
    static_cast<IClassFactory*>(factory)->Release();
    return static_cast<IUnknown*>(object);
}

HRESULT CanUnloadNow() {
    return Symbol<decltype(DllCanUnloadNow)>("DllCanUnloadNow")();
}

// Whoever knows better than the library closes it all the same.
void UnloadIfUnused() {
    if (g_library) dlclose(g_library);
    g_library = nullptr;
}

bool IsLoaded() {
    void* const library = dlopen(g_path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library) dlclose(library);
    return library != nullptr;
}

}  // namespace quorvane::testing
