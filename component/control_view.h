// The control drawn by its container: in designers, and wherever it has no window.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "automation/com_ptr.h"
#include "component/control_extent.h"
#include "component/control_part.h"

namespace quorvane {

class ViewPart final : public ControlPart<IViewObjectEx> {
public:
    ViewPart(IUnknown& owner, const ControlExtent& extent, HICON icon)
        : ControlPart(owner), extent_(extent), icon_(icon) {}

    // Tells the view sink that the picture has changed.
    void SendViewChange() noexcept;

    STDMETHODIMP Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device,
                      HDC targetDc, HDC dc, LPCRECTL bounds, LPCRECTL windowBounds,
                      BOOL(STDMETHODCALLTYPE* goOn)(ULONG_PTR), ULONG_PTR argument) override;
    STDMETHODIMP GetColorSet(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device,
                             HDC targetDc, LOGPALETTE** colors) override;
    STDMETHODIMP Freeze(DWORD aspect, LONG index, void* aspectInfo, DWORD* key) override;
    STDMETHODIMP Unfreeze(DWORD key) override;
    STDMETHODIMP SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
    STDMETHODIMP GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;

    STDMETHODIMP GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, LPSIZEL size) override;

    STDMETHODIMP GetRect(DWORD aspect, LPRECTL rect) override;
    STDMETHODIMP GetViewStatus(DWORD* status) override;
    STDMETHODIMP QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG closeHint,
                               DWORD* hit) override;
    STDMETHODIMP QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG closeHint,
                              DWORD* hit) override;
    STDMETHODIMP GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, HDC targetDc,
                                  DVEXTENTINFO* info, LPSIZEL size) override;

private:
    const ControlExtent& extent_;
    const HICON icon_;
    ComPtr<IAdviseSink> sink_;  // only one, as the interface says
    DWORD sinkAspects_ = 0;
    DWORD sinkFlags_ = 0;
};

}  // namespace quorvane
