// Interfaces of controls and their containers.
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

struct IFont;
struct IOleUndoManager;
struct IBindHost;
struct IServiceProvider;
struct IPropertyNotifySink;
typedef struct tagCONTROLINFO CONTROLINFO;
typedef struct tagPOINTF POINTF;
typedef POINT POINTL;
typedef DWORD OLE_COLOR;
typedef struct HPALETTE__* HPALETTE;

struct IOleControl : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnMnemonic(LPMSG message) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID property) = 0;
    virtual HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) = 0;
};
__CRT_UUID_DECL(IOleControl, 0xb196b288, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d,
                0x07)

struct IOleControlSite : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE OnControlInfoChanged() = 0;
    virtual HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL lock) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch** control) = 0;
    virtual HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* himetric, POINTF* container,
                                                      DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message, DWORD modifiers) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnFocus(BOOL hasFocus) = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowPropertyFrame() = 0;
};
__CRT_UUID_DECL(IOleControlSite, 0xb196b289, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34,
                0x1d, 0x07)

enum HITRESULT { HITRESULT_OUTSIDE = 0, HITRESULT_HIT = 3 };
enum DVEXTENTMODE { DVEXTENT_CONTENT = 0, DVEXTENT_INTEGRAL = 1 };

typedef struct tagExtentInfo {
    ULONG cb;
    DWORD dwExtentMode;
    SIZEL sizelProposed;
} DVEXTENTINFO;

struct IViewObjectEx : public IViewObject2 {
    virtual HRESULT STDMETHODCALLTYPE GetRect(DWORD aspect, LPRECTL rect) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetViewStatus(DWORD* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point,
                                                    LONG closeHint, DWORD* hit) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect,
                                                   LONG closeHint, DWORD* hit) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNaturalExtent(DWORD aspect, LONG index,
                                                       DVTARGETDEVICE* device, HDC targetDc,
                                                       DVEXTENTINFO* info, LPSIZEL size) = 0;
};
__CRT_UUID_DECL(IViewObjectEx, 0x3af24292, 0x0c96, 0x11ce, 0xa0, 0xcf, 0x00, 0xaa, 0x00, 0x60, 0x0a,
                0xb8)

struct IPersistStreamInit : public IPersist {
    virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
    virtual HRESULT STDMETHODCALLTYPE Load(IStream* stream) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitNew() = 0;
};
__CRT_UUID_DECL(IPersistStreamInit, 0x7fd52380, 0x4e07, 0x101b, 0xae, 0x2d, 0x08, 0x00, 0x2b, 0x2e,
                0xc7, 0x13)

struct IErrorLog : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE AddError(LPCOLESTR property, EXCEPINFO* error) = 0;
};
__CRT_UUID_DECL(IErrorLog, 0x3127ca40, 0x446e, 0x11ce, 0x81, 0x35, 0x00, 0xaa, 0x00, 0x4b, 0xb8,
                0x51)

// Read converts to the type that *value has on entry, unless that is VT_EMPTY. E_INVALIDARG for a
// property that the bag doesn't have.
struct IPropertyBag : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog* log) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) = 0;
};
__CRT_UUID_DECL(IPropertyBag, 0x55272a00, 0x42cb, 0x11ce, 0x81, 0x35, 0x00, 0xaa, 0x00, 0x4b, 0xb8,
                0x51)

struct IPersistPropertyBag : public IPersist {
    virtual HRESULT STDMETHODCALLTYPE InitNew() = 0;
    virtual HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) = 0;
};
__CRT_UUID_DECL(IPersistPropertyBag, 0x37d84f60, 0x42cb, 0x11ce, 0x81, 0x35, 0x00, 0xaa, 0x00, 0x4b,
                0xb8, 0x51)

struct IAdviseSinkEx : public IAdviseSink {
    virtual void STDMETHODCALLTYPE OnViewStatusChange(DWORD status) = 0;
};
__CRT_UUID_DECL(IAdviseSinkEx, 0x3af24290, 0x0c96, 0x11ce, 0xa0, 0xcf, 0x00, 0xaa, 0x00, 0x60, 0x0a,
                0xb8)

typedef struct tagQACONTAINER {
    ULONG cbSize;
    IOleClientSite* pClientSite;
    IAdviseSinkEx* pAdviseSink;
    IPropertyNotifySink* pPropertyNotifySink;
    IUnknown* pUnkEventSink;
    DWORD dwAmbientFlags;
    OLE_COLOR colorFore;
    OLE_COLOR colorBack;
    IFont* pFont;
    IOleUndoManager* pUndoMgr;
    DWORD dwAppearance;
    LONG lcid;
    HPALETTE hpal;
    IBindHost* pBindHost;
    IOleControlSite* pOleControlSite;
    IServiceProvider* pServiceProvider;
} QACONTAINER;

typedef struct tagQACONTROL {
    ULONG cbSize;
    DWORD dwMiscStatus;
    DWORD dwViewStatus;
    DWORD dwEventCookie;
    DWORD dwPropNotifyCookie;
    DWORD dwPointerActivationPolicy;
} QACONTROL;

struct IQuickActivate : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QuickActivate(QACONTAINER* container, QACONTROL* control) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetContentExtent(LPSIZEL size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetContentExtent(LPSIZEL size) = 0;
};
__CRT_UUID_DECL(IQuickActivate, 0xcf51ed10, 0x62fe, 0x11cf, 0xbf, 0x86, 0x00, 0xa0, 0xc9, 0x03,
                0x48, 0x36)

enum GUIDKIND { GUIDKIND_DEFAULT_SOURCE_DISP_IID = 1 };

struct IProvideClassInfo : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) = 0;
};
__CRT_UUID_DECL(IProvideClassInfo, 0xb196b283, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34,
                0x1d, 0x07)

struct IProvideClassInfo2 : public IProvideClassInfo {
    virtual HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) = 0;
};
__CRT_UUID_DECL(IProvideClassInfo2, 0xa6bc3ac0, 0xdbaa, 0x11ce, 0x9d, 0xe3, 0x00, 0xaa, 0x00, 0x4b,
                0xb8, 0x51)

extern "C" {
extern QUORVANE_EXPORT const IID IID_IEnumConnections;
extern QUORVANE_EXPORT const IID IID_IConnectionPoint;
extern QUORVANE_EXPORT const IID IID_IEnumConnectionPoints;
extern QUORVANE_EXPORT const IID IID_IConnectionPointContainer;
}

#endif
