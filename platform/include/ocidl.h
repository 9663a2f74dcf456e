// Interfaces of controls and their containers: connections of event sinks.
#pragma once

#include "ole2.h"

#ifdef __cplusplus

struct IConnectionPoint;
struct IConnectionPointContainer;
typedef IConnectionPoint* LPCONNECTIONPOINT;

typedef struct tagCONNECTDATA {
    IUnknown* pUnk;  // the sink, a reference of the receiver's
    DWORD dwCookie;
} CONNECTDATA, *LPCONNECTDATA;

struct IEnumConnections : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, LPCONNECTDATA connections,
                                           ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumConnections** copy) = 0;
};
__CRT_UUID_DECL(IEnumConnections, 0xb196b287, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34,
                0x1d, 0x07)

struct IConnectionPoint : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** container) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) = 0;
};
__CRT_UUID_DECL(IConnectionPoint, 0xb196b286, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34,
                0x1d, 0x07)

struct IEnumConnectionPoints : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, LPCONNECTIONPOINT* points,
                                           ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** copy) = 0;
};
__CRT_UUID_DECL(IEnumConnectionPoints, 0xb196b285, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00,
                0x34, 0x1d, 0x07)

struct IConnectionPointContainer : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid,
                                                          IConnectionPoint** point) = 0;
};
__CRT_UUID_DECL(IConnectionPointContainer, 0xb196b284, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00,
                0x34, 0x1d, 0x07)

extern "C" {
extern QUORVANE_EXPORT const IID IID_IEnumConnections;
extern QUORVANE_EXPORT const IID IID_IConnectionPoint;
extern QUORVANE_EXPORT const IID IID_IEnumConnectionPoints;
extern QUORVANE_EXPORT const IID IID_IConnectionPointContainer;
}

#endif
