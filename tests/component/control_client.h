// What containers bring along for a control: sites, sinks, streams, property bags.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>
#include <ocidl.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/wide_string.h"
#include "component/smtp_mail.h"
#include "tests/support/com.h"

namespace quorvane {

// A part of a test's container: lives on the test's stack, which outlives the control.
template <class... Interfaces>
class OnStack : public Interfaces... {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        (void)((iid == __uuidof(Interfaces) && (*out = static_cast<Interfaces*>(this))) || ...);
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }

    ULONG references = 0;
};

template <class Interface>
ComPtr<Interface> Ask(IUnknown* object) {
    ComPtr<Interface> asked;
    EXPECT_EQ(object->QueryInterface(__uuidof(Interface), asked.ReceiveVoid()), S_OK);
    return asked;
}

// Keeps bytes; gives and takes one at a time when asked to.
class MemoryStream final : public OnStack<IStream> {
public:
    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override {
        const auto left = static_cast<ULONG>(bytes.size() - position);
        *read = std::min({size, left, piece});
        bytes.copy(static_cast<char*>(buffer), *read, position);
        position += *read;
        return *read == size ? S_OK : S_FALSE;
    }
    STDMETHODIMP Write(const void* buffer, ULONG size, ULONG* written) override {
        *written = std::min(size, room);
        bytes.append(static_cast<const char*>(buffer), *written);
        return S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

    std::string bytes;
    std::size_t position = 0;
    ULONG piece = 0xFFFF;
    ULONG room = 0xFFFF;
};

// Values are given in the type in which they stand here.
class PropertyBag final : public OnStack<IPropertyBag> {
public:
    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
        const auto found = values.find(name);
        if (found == values.end()) return E_INVALIDARG;
        return VariantCopy(value, &found->second);
    }
    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override {
        values[name] = *value;
        return S_OK;
    }

    std::map<WideString, VARIANT> values;
};

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
