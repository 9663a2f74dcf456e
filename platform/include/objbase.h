// COM: apartments, task memory, class objects, identifiers as text.
#pragma once

#include "unknwn.h"

#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDAPI EXTERN_C QUORVANE_EXPORT HRESULT STDAPICALLTYPE
#define STDAPI_(type) EXTERN_C QUORVANE_EXPORT type STDAPICALLTYPE

#ifdef __cplusplus

typedef enum tagCOINIT { COINIT_MULTITHREADED = 0x0, COINIT_APARTMENTTHREADED = 0x2 } COINIT;

enum CLSCTX {
    CLSCTX_INPROC_SERVER = 0x1,
};

// The calling thread enters an apartment: S_OK the first time, S_FALSE when it is in one of that
// kind already, RPC_E_CHANGED_MODE when it is in one of the other kind. Every success wants a
// CoUninitialize of the same thread.
STDAPI CoInitialize(LPVOID reserved);
STDAPI CoInitializeEx(LPVOID reserved, DWORD model);
STDAPI_(void) CoUninitialize();

// Memory that passes between a component and its clients. Null when there is none.
STDAPI_(LPVOID) CoTaskMemAlloc(SIZE_T size);
STDAPI_(void) CoTaskMemFree(LPVOID block);

// Class objects from the library's own DllGetClassObject, REGDB_E_CLASSNOTREG for all others.
// CO_E_NOTINITIALIZED outside an apartment.
// Differs from Windows: the registry is not consulted and no other library is loaded.
STDAPI CoGetClassObject(REFCLSID rclsid, DWORD context, LPVOID server, REFIID riid, LPVOID* object);
STDAPI CoCreateInstance(REFCLSID rclsid, LPUNKNOWN outer, DWORD context, REFIID riid,
                        LPVOID* object);

// Differs from Windows: nothing happens, since COM has loaded no library of its own accord.
STDAPI_(void) CoFreeUnusedLibraries();

// Through the registry: CO_E_CLASSSTRING for a name that is not registered, REGDB_E_CLASSNOTREG
// for a class without a ProgID. The caller frees the text with CoTaskMemFree.
STDAPI CLSIDFromProgID(LPCOLESTR progId, LPCLSID clsid);
STDAPI ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progId);

// Identifiers as {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}. StringFromGUID2 writes up to `size` units
// and returns 39, NUL included, or 0 when they don't fit.
STDAPI_(int) StringFromGUID2(REFGUID guid, LPOLESTR text, int size);

// Entry points of a component library.
STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* object);
STDAPI DllCanUnloadNow();

#endif
