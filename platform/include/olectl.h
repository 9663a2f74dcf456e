// Registration entry points of a component library, and status codes of connections.
#pragma once

#include "ole2.h"

#define CONNECT_E_NOCONNECTION ((HRESULT)0x80040200)
#define CONNECT_E_ADVISELIMIT ((HRESULT)0x80040201)
#define CONNECT_E_CANNOTCONNECT ((HRESULT)0x80040202)

#ifdef __cplusplus

STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();

#endif
