// Objects that are embedded in documents and forms, and the sites that their containers give them.
#pragma once

#include "objidl.h"
#include "winuser.h"

#ifdef __cplusplus

struct IEnumOLEVERB;
struct IOleContainer;
struct IOleInPlaceActiveObject;
typedef struct tagLOGPALETTE LOGPALETTE;
typedef struct tagOleMenuGroupWidths* LPOLEMENUGROUPWIDTHS;
typedef HGLOBAL HOLEMENU;
typedef const RECT* LPCBORDERWIDTHS;

enum DVASPECT { DVASPECT_CONTENT = 1, DVASPECT_ICON = 4 };
enum OLECLOSE { OLECLOSE_SAVEIFDIRTY = 0, OLECLOSE_NOSAVE = 1 };
enum OLEMISC {
    OLEMISC_RECOMPOSEONRESIZE = 0x1,
    OLEMISC_CANTLINKINSIDE = 0x10,
    OLEMISC_INSIDEOUT = 0x80,
    OLEMISC_ACTIVATEWHENVISIBLE = 0x100,
    OLEMISC_INVISIBLEATRUNTIME = 0x400,
    OLEMISC_SETCLIENTSITEFIRST = 0x20000,
};

typedef struct tagOIFI {
    UINT cb;
    BOOL fMDIApp;
    HWND hwndFrame;
    HACCEL haccel;
    UINT cAccelEntries;
} OLEINPLACEFRAMEINFO, *LPOLEINPLACEFRAMEINFO;

struct IOleClientSite : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SaveObject() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowObject() = 0;
    virtual HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL show) = 0;
    virtual HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() = 0;
};
__CRT_UUID_DECL(IOleClientSite, 0x00000118, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IOleObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR application, LPCOLESTR document) = 0;
    virtual HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMoniker(DWORD which, IMoniker* moniker) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitFromData(IDataObject* data, BOOL creation,
                                                   DWORD reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD reserved, IDataObject** data) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* activeSite,
                                             LONG index, HWND parent, LPCRECT place) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) = 0;
    virtual HRESULT STDMETHODCALLTYPE Update() = 0;
    virtual HRESULT STDMETHODCALLTYPE IsUpToDate() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* clsid) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* userType) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** advices) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE* colors) = 0;
};
__CRT_UUID_DECL(IOleObject, 0x00000112, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IOleWindow : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) = 0;
    virtual HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) = 0;
};
__CRT_UUID_DECL(IOleWindow, 0x00000114, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IOleInPlaceUIWindow : public IOleWindow {
    virtual HRESULT STDMETHODCALLTYPE GetBorder(LPRECT border) = 0;
    virtual HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS widths) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS widths) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* active,
                                                      LPCOLESTR name) = 0;
};
__CRT_UUID_DECL(IOleInPlaceUIWindow, 0x00000115, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IOleInPlaceFrame : public IOleInPlaceUIWindow {
    virtual HRESULT STDMETHODCALLTYPE InsertMenus(HMENU menu, LPOLEMENUGROUPWIDTHS widths) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMenu(HMENU menu, HOLEMENU descriptor, HWND active) = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU menu) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR text) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) = 0;
    virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message, WORD id) = 0;
};
__CRT_UUID_DECL(IOleInPlaceFrame, 0x00000116, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IOleInPlaceSite : public IOleWindow {
    virtual HRESULT STDMETHODCALLTYPE CanInPlaceActivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE OnInPlaceActivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE OnUIActivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                                       IOleInPlaceUIWindow** document, LPRECT place,
                                                       LPRECT clip, LPOLEINPLACEFRAMEINFO info) = 0;
    virtual HRESULT STDMETHODCALLTYPE Scroll(SIZE extent) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL undoable) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE DiscardUndoState() = 0;
    virtual HRESULT STDMETHODCALLTYPE DeactivateAndUndo() = 0;
    virtual HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT place) = 0;
};
__CRT_UUID_DECL(IOleInPlaceSite, 0x00000119, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IOleInPlaceObject : public IOleWindow {
    virtual HRESULT STDMETHODCALLTYPE InPlaceDeactivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE UIDeactivate() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT place, LPCRECT clip) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReactivateAndUndo() = 0;
};
__CRT_UUID_DECL(IOleInPlaceObject, 0x00000113, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IOleInPlaceActiveObject : public IOleWindow {
    virtual HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL active) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL active) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window,
                                                   BOOL isFrame) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) = 0;
};
__CRT_UUID_DECL(IOleInPlaceActiveObject, 0x00000117, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00, 0x46)

struct IViewObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspectInfo,
                                           DVTARGETDEVICE* device, HDC targetDc, HDC dc,
                                           LPCRECTL bounds, LPCRECTL windowBounds,
                                           BOOL(STDMETHODCALLTYPE* goOn)(ULONG_PTR),
                                           ULONG_PTR argument) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* aspectInfo,
                                                  DVTARGETDEVICE* device, HDC targetDc,
                                                  LOGPALETTE** colors) = 0;
    virtual HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* aspectInfo,
                                             DWORD* key) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unfreeze(DWORD key) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags,
                                                IAdviseSink** sink) = 0;
};
__CRT_UUID_DECL(IViewObject, 0x0000010d, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IViewObject2 : public IViewObject {
    virtual HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                                LPSIZEL size) = 0;
};
__CRT_UUID_DECL(IViewObject2, 0x00000127, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

#endif
