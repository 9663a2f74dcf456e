// Registration entry points of a component library.
#pragma once

#include "ole2.h"

#ifdef __cplusplus

#define SELFREG_E_TYPELIB ((HRESULT)0x80040200)
#define SELFREG_E_CLASS ((HRESULT)0x80040201)

STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();

#endif
