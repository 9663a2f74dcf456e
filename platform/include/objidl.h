// The table through which interface pointers go from one apartment to another.
#pragma once

#include "unknwn.h"

#ifdef __cplusplus

// One a process, CLSID_StdGlobalInterfaceTable of CoCreateInstance, for threads of all apartments.
//
// RegisterInterfaceInGlobal keeps a reference of an object of the calling thread's apartment under
// a number that is never 0. GetInterfaceFromGlobal gives the object itself in that apartment and a
// proxy in any other, for IUnknown or IDispatch. Calls of a proxy wait while the object's apartment
// carries them out; in a single-threaded one that is while its thread takes messages out of its
// queue and dispatches them, or waits for a call of its own. RPC_E_DISCONNECTED when that apartment
// has ended, which lets go of all that was registered in it.
struct IGlobalInterfaceTable : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown* object, REFIID riid,
                                                                DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID riid,
                                                             void** object) = 0;
};
__CRT_UUID_DECL(IGlobalInterfaceTable, 0x00000146, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00, 0x46)

extern "C" {
extern QUORVANE_EXPORT const IID IID_IGlobalInterfaceTable;
extern QUORVANE_EXPORT const CLSID CLSID_StdGlobalInterfaceTable;
}

#endif
