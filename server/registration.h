// What the library writes to the registry and removes from it.
#pragma once

#include <windows.h>

namespace quorvane {

// Registers the application identity, every class, the type library and the proxies, in that
// order. Stops at the first failure, takes back what it has written, and returns its status.
// Registering again overwrites.
HRESULT RegisterServer();

// Removes the classes with everything below their keys, the type library and the proxies; what
// isn't there is no failure. Goes on after a failure and returns the first one. The application
// identity stays: an administrator may have set permissions on it.
HRESULT UnregisterServer();

}  // namespace quorvane
