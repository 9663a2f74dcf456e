// The interfaces that every COM object and every class object has.
#pragma once

#include "wtypes.h"

#ifdef __cplusplus

// No virtual destructor: the first three slots of every vtable are these methods.
struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    template <typename T>
    HRESULT QueryInterface(T** object) {
        return QueryInterface(__uuidof(T), reinterpret_cast<void**>(object));
    }
};
__CRT_UUID_DECL(IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)
typedef IUnknown* LPUNKNOWN;

struct IClassFactory : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid,
                                                     void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};
__CRT_UUID_DECL(IClassFactory, 0x00000001, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

extern "C" {
extern QUORVANE_EXPORT const IID IID_IUnknown;
extern QUORVANE_EXPORT const IID IID_IClassFactory;
}

#else
typedef struct IUnknown IUnknown;
#endif
