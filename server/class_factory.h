// Class factories: one for each creatable class, made when it is first asked for and kept.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace quorvane {

// Gives *out the factory of the class, with a reference of the caller's. Such a reference keeps
// the library loaded. CLASS_E_CLASSNOTAVAILABLE for a class that isn't one of ours, E_NOINTERFACE
// for an interface that factories don't have, E_POINTER for a null out. Any thread.
HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** out);

}  // namespace quorvane
