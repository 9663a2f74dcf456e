#include "component/control_view.h"

#include <utility>

#include "component/control_drawing.h"

namespace quorvane {
namespace {

bool IsEmpty(const RECT& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

// The bounds in the device's own units, upright, whatever the mapping of the device context.
RECT DeviceBounds(HDC dc, const RECTL& bounds) {
    POINT corners[] = {{bounds.left, bounds.top}, {bounds.right, bounds.bottom}};
    LPtoDP(dc, corners, 2);
    if (corners[0].x > corners[1].x) std::swap(corners[0].x, corners[1].x);
    if (corners[0].y > corners[1].y) std::swap(corners[0].y, corners[1].y);
    return {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

// A container may draw in any unit, with the vertical axis up. Icon and letters have sizes in
// pixels and stand upright.
void DrawInPixels(HDC dc, const RECTL& bounds, HICON icon) {
    const RECT pixels = DeviceBounds(dc, bounds);
    const int saved = SaveDC(dc);
    SetMapMode(dc, MM_TEXT);
    SetWindowOrgEx(dc, 0, 0, nullptr);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    DrawControl(dc, pixels, icon);
    RestoreDC(dc, saved);
}

}  // namespace

void ViewPart::SendViewChange() noexcept {
    const ComPtr<IAdviseSink> sink = sink_;
    if (!sink) return;
    if (sinkFlags_ & ADVF_ONLYONCE) sink_.Reset();
    sink->OnViewChange(DVASPECT_CONTENT, -1);
}

STDMETHODIMP ViewPart::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc,
                            LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                            ULONG_PTR) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!dc || !bounds) return E_INVALIDARG;
    if (GetDeviceCaps(dc, TECHNOLOGY) == DT_METAFILE) {
        // Has no units of its own: what it is played on gives them.
        DrawControl(dc, {bounds->left, bounds->top, bounds->right, bounds->bottom}, icon_);
    } else {
        DrawInPixels(dc, *bounds, icon_);
    }
    return S_OK;
}

STDMETHODIMP ViewPart::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE**) {
    return E_NOTIMPL;
}

STDMETHODIMP ViewPart::Freeze(DWORD, LONG, void*, DWORD*) {
    return E_NOTIMPL;
}

STDMETHODIMP ViewPart::Unfreeze(DWORD) {
    return E_NOTIMPL;
}

STDMETHODIMP ViewPart::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
    if (sink && aspects != DVASPECT_CONTENT) return DV_E_DVASPECT;
    const ComPtr<IAdviseSink> old = std::exchange(sink_, ComPtr<IAdviseSink>(sink));
    sinkAspects_ = aspects;
    sinkFlags_ = flags;
    if (flags & ADVF_PRIMEFIRST) SendViewChange();
    return S_OK;
}

STDMETHODIMP ViewPart::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
    if (aspects) *aspects = sinkAspects_;
    if (flags) *flags = sinkFlags_;
    if (sink) *sink = ComPtr<IAdviseSink>(sink_).Detach();
    return S_OK;
}

STDMETHODIMP ViewPart::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!size) return E_POINTER;
    *size = extent_.Size();
    return S_OK;
}

STDMETHODIMP ViewPart::GetRect(DWORD, LPRECTL) {
    return E_NOTIMPL;
}

STDMETHODIMP ViewPart::GetViewStatus(DWORD* status) {
    if (!status) return E_POINTER;
    *status = 0;  // not opaque: the icon leaves most of the bounds as it finds them
    return S_OK;
}

STDMETHODIMP ViewPart::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG, DWORD* hit) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!bounds || !hit) return E_POINTER;
    const bool inside = point.x >= bounds->left && point.x < bounds->right &&
                        point.y >= bounds->top && point.y < bounds->bottom;
    *hit = inside ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

STDMETHODIMP ViewPart::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG, DWORD* hit) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!bounds || !rect || !hit) return E_POINTER;
    const bool meets = !IsEmpty(*bounds) && !IsEmpty(*rect) && rect->left < bounds->right &&
                       rect->right > bounds->left && rect->top < bounds->bottom &&
                       rect->bottom > bounds->top;
    *hit = meets ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

STDMETHODIMP ViewPart::GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, HDC,
                                        DVEXTENTINFO* info, LPSIZEL size) {
    if (!info || !size) return E_POINTER;
    if (info->dwExtentMode != DVEXTENT_CONTENT) return E_NOTIMPL;
    return GetExtent(aspect, index, device, size);
}

}  // namespace quorvane
