// The component's own type information, through which late-bound calls go.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace quorvane {

// Gives *out the type information of one of the component's interfaces, with a reference of its
// own. The type library is loaded on the first call and kept while the library is loaded.
HRESULT GetOwnTypeInfo(REFIID iid, ITypeInfo** out);

}  // namespace quorvane
