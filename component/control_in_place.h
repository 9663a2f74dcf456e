// The control active in its container, with a window in the container's own.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "automation/com_ptr.h"
#include "component/control_part.h"
#include "component/control_window.h"

namespace quorvane {

// Active means that there is a window; active with its user interface, that it has the focus as
// well. A container may end either, or the object, during any call that it gets.
class InPlacePart final : public ControlPart<IOleInPlaceObject, IOleInPlaceActiveObject>,
                          private ControlWindow::Listener {
public:
    InPlacePart(IUnknown& owner, HICON icon) : ControlPart(owner), icon_(icon), window_(*this) {}

    // Shows the control in the site's window. A failing status when the site doesn't let it or no
    // window can be made; it is not active then.
    HRESULT Activate(IOleClientSite& client, bool withInterface);
    // Leaves the control active but not to be seen.
    void Hide();

    STDMETHODIMP GetWindow(HWND* window) override;
    STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;

    STDMETHODIMP InPlaceDeactivate() override;
    STDMETHODIMP UIDeactivate() override;
    STDMETHODIMP SetObjectRects(LPCRECT place, LPCRECT clip) override;
    STDMETHODIMP ReactivateAndUndo() override;

    STDMETHODIMP TranslateAccelerator(LPMSG message) override;
    STDMETHODIMP OnFrameWindowActivate(BOOL active) override;
    STDMETHODIMP OnDocWindowActivate(BOOL active) override;
    STDMETHODIMP ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window, BOOL isFrame) override;
    STDMETHODIMP EnableModeless(BOOL enable) override;

private:
    void Paint(HDC dc, const RECT& bounds) override;
    void Clicked() override;
    void FocusChanged(bool hasFocus) override;

    HRESULT Enter(IOleClientSite& client);
    HRESULT Appear();
    HRESULT ActivateInterface();
    void TellBorders(IOleInPlaceActiveObject* active);

    const HICON icon_;
    // From activation to deactivation.
    ComPtr<IOleInPlaceSite> site_;
    ComPtr<IOleInPlaceFrame> frame_;
    ComPtr<IOleInPlaceUIWindow> document_;  // null where it is the frame itself
    bool hasInterface_ = false;
    ControlWindow window_;
};

}  // namespace quorvane
