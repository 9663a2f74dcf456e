// Registry entries of the type library and of its interfaces.
#pragma once

#include <oaidl.h>

namespace quorvane::platform {

// Writes them for the library in the file at `path`.
HRESULT RegisterTypeLibrary(LPCOLESTR path);
// Removes them; TYPE_E_REGISTRYACCESS when the library isn't registered.
HRESULT UnregisterTypeLibrary();

}  // namespace quorvane::platform
