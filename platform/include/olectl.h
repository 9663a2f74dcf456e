// Registration entry points of a component library.
#pragma once

#include "ole2.h"

#ifdef __cplusplus

STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();

#endif
