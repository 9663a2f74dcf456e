#include "automation/type_info.h"

#include <oleauto.h>

#include <mutex>

#include "automation/boundary.h"
#include "automation/com_ptr.h"
#include "automation/module.h"

namespace quorvane {
namespace {

// The type library holds no reference on this module, so keeping it doesn't keep the module.
std::mutex g_mutex;
ITypeLib* g_library = nullptr;

HRESULT OwnTypeLibrary(ComPtr<ITypeLib>& out) {
    const std::lock_guard lock(g_mutex);
    if (!g_library) {
        const WideString path = ModulePath();
        if (path.empty()) return TYPE_E_CANTLOADLIBRARY;
        const HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &g_library);
        if (FAILED(hr)) return hr;
    }
    out = ComPtr<ITypeLib>(g_library);
    return S_OK;
}

}  // namespace

HRESULT GetOwnTypeInfo(REFIID iid, ITypeInfo** out) {
    *out = nullptr;
    return Guarded([&] {
        ComPtr<ITypeLib> library;
        const HRESULT hr = OwnTypeLibrary(library);
        return FAILED(hr) ? hr : library->GetTypeInfoOfGuid(iid, out);
    });
}

}  // namespace quorvane
