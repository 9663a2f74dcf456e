// Resources.
#pragma once

#include "windef.h"

#ifdef __cplusplus

extern "C" {

// Copies string resource `id`, cut to `size` - 1 units, and returns its length; 0 when there is no
// such resource. Differs from Windows: the strings are the product's own, whatever the module.
int WINAPI LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size);

}  // extern "C"

#endif
