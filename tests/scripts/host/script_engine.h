// Runs the text of scripts in one of the system's engines.
#pragma once

#include <windows.h>
#include <activscp.h>

#include <string>
#include <vector>

#include "automation/com_ptr.h"
#include "tests/scripts/host/wscript.h"

namespace scripthost {

// The engine's view of its host: the object WScript and where errors go.
class ScriptSite final : public IActiveScriptSite, public IActiveScriptSiteWindow {
public:
    explicit ScriptSite(WScript& wscript) : wscript_(wscript) {}
    ScriptSite(const ScriptSite&) = delete;
    ScriptSite& operator=(const ScriptSite&) = delete;

    // Errors in text that is parsed from now on are shown with this file name.
    void AddFile(const std::wstring& name) { files_.push_back(name); }
    bool Failed() const { return failed_; }

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetLCID(LCID* lcid) override;
    STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item,
                             ITypeInfo** info) override;
    STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
    STDMETHODIMP OnScriptError(IActiveScriptError* error) override;
    STDMETHODIMP OnEnterScript() override { return S_OK; }
    STDMETHODIMP OnLeaveScript() override { return S_OK; }
    STDMETHODIMP GetWindow(HWND* window) override;
    STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }

private:
    WScript& wscript_;
    std::vector<std::wstring> files_;  // by source context
    bool failed_ = false;
};

// One engine with its site. The calling thread is in a single-threaded apartment.
class ScriptEngine {
public:
    explicit ScriptEngine(WScript& wscript) : wscript_(wscript), site_(wscript) {}
    ~ScriptEngine();
    ScriptEngine(const ScriptEngine&) = delete;
    ScriptEngine& operator=(const ScriptEngine&) = delete;

    // Starts the engine for the file's extension: .js or .vbs.
    HRESULT Start(const std::wstring& file);
    // Runs a script; false when it ended with an error or called Quit.
    bool Run(const std::wstring& file, const std::wstring& code);
    bool Failed() const { return site_.Failed(); }

private:
    WScript& wscript_;
    ScriptSite site_;
    quorvane::ComPtr<IActiveScript> engine_;
    quorvane::ComPtr<IActiveScriptParse> parser_;
    DWORD files_ = 0;
};

}  // namespace scripthost
