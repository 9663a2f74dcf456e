// The component's library as a program may load and unload it.
#pragma once

#include <windows.h>
#include <ole2.h>

namespace quorvane::testing {

// Loads the library and makes an object of one of its classes. Null when that fails.
IUnknown* CreateObject(const char* library, REFCLSID clsid, REFIID iid);

// What the library's DllCanUnloadNow answers.
HRESULT CanUnloadNow();

// Has the library unloaded if it says that it may be, as the system would do it.
void UnloadIfUnused();

bool IsLoaded();

// Whether the library can go only after the thread that has used it, whose objects it keeps, or
// only on that thread, whose apartment it belongs to.
extern const bool kGoesAfterItsThread;

}  // namespace quorvane::testing
