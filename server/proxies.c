/* The proxies and stubs that widl makes of the interface definition, with the entry points of a
   proxy library as the SDK's macros write them, each behind the prefix Proxy. */
#define REGISTER_PROXY_DLL
#define PROXY_DELEGATION
#define ENTRY_PREFIX Proxy

#include <objbase.h>

/* Declared by the system's header for C++ only. */
HRESULT STDMETHODCALLTYPE IUnknown_QueryInterface_Proxy(IUnknown* This, REFIID riid, void** object);
ULONG STDMETHODCALLTYPE IUnknown_AddRef_Proxy(IUnknown* This);
ULONG STDMETHODCALLTYPE IUnknown_Release_Proxy(IUnknown* This);

#include "Quorvane_p.c"

/* clang-format off */
EXTERN_PROXY_FILE(Quorvane)

PROXYFILE_LIST_START
    REFERENCE_PROXY_FILE(Quorvane),
PROXYFILE_LIST_END

DLLDATA_ROUTINES(aProxyFileList, GET_DLL_CLSID)
