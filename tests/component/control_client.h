// What containers bring along for a control: sites and sinks.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>
#include <ocidl.h>

#include <functional>
#include <string>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/wide_string.h"
#include "component/smtp_mail.h"
#include "tests/component/control_stores.h"
#include "tests/support/com.h"

namespace quorvane {

template <class Interface>
ComPtr<Interface> Ask(IUnknown* object) {
    ComPtr<Interface> asked;
    EXPECT_EQ(object->QueryInterface(__uuidof(Interface), asked.ReceiveVoid()), S_OK);
    return asked;
}

// Writes down what it hears of.
class ViewSink final : public OnStack<IAdviseSink> {
public:
    STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override { Hear("data"); }
    STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override { Hear("view"); }
    STDMETHODIMP_(void) OnRename(IMoniker*) override { Hear("rename"); }
    STDMETHODIMP_(void) OnSave() override { Hear("save"); }
    STDMETHODIMP_(void) OnClose() override { Hear("close"); }

    std::vector<std::string> heard;
    std::function<void()> reaction;

private:
    void Hear(const char* what) {
        heard.push_back(what);
        if (reaction) reaction();
    }
};

// A container's place for one control. Writes down what the control tells it; `reaction` may do
// something about it, and a failing status of it is what the control gets.
class Site final : public OnStack<IOleClientSite, IOleInPlaceSite, IOleControlSite> {
public:
    // IOleClientSite
    STDMETHODIMP SaveObject() override { return Hear("save"); }
    STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOINTERFACE; }
    STDMETHODIMP ShowObject() override { return Hear("show"); }
    STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
    STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleInPlaceSite
    STDMETHODIMP GetWindow(HWND* window) override {
        *window = parent;
        return S_OK;
    }
    STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP CanInPlaceActivate() override { return willing ? S_OK : S_FALSE; }
    STDMETHODIMP OnInPlaceActivate() override { return Hear("active"); }
    STDMETHODIMP OnUIActivate() override { return Hear("interface"); }
    STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                  LPRECT givenPlace, LPRECT givenClip,
                                  LPOLEINPLACEFRAMEINFO) override {
        *frame = nullptr;
        *document = nullptr;
        *givenPlace = place;
        *givenClip = clip;
        return Hear("context");
    }
    STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
    STDMETHODIMP OnUIDeactivate(BOOL) override { return Hear("no interface"); }
    STDMETHODIMP OnInPlaceDeactivate() override { return Hear("inactive"); }
    STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
    STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
    STDMETHODIMP OnPosRectChange(LPCRECT) override { return S_OK; }

    // IOleControlSite
    STDMETHODIMP OnControlInfoChanged() override { return S_OK; }
    STDMETHODIMP LockInPlaceActive(BOOL) override { return S_OK; }
    STDMETHODIMP GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    STDMETHODIMP TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP TranslateAccelerator(LPMSG, DWORD) override { return S_FALSE; }
    STDMETHODIMP OnFocus(BOOL hasFocus) override { return Hear(hasFocus ? "focus" : "no focus"); }
    STDMETHODIMP ShowPropertyFrame() override { return E_NOTIMPL; }

    bool willing = true;
    HWND parent = nullptr;
    RECT place = {10, 20, 110, 80};
    RECT clip = {0, 0, 400, 300};
    std::vector<std::string> heard;
    std::function<HRESULT(const std::string&)> reaction;

private:
    HRESULT Hear(const std::string& what) {
        heard.push_back(what);
        return reaction ? reaction(what) : S_OK;
    }
};

inline HRESULT Do(IOleObject* object, LONG verb) {
    return object->DoVerb(verb, nullptr, nullptr, 0, nullptr, nullptr);
}

}  // namespace quorvane
