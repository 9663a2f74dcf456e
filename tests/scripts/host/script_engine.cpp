#include "tests/scripts/host/script_engine.h"

#include <cwchar>
#include <filesystem>

#include "tests/scripts/host/console.h"

namespace scripthost {
namespace {

constexpr LCID kEnglish = 0x409;
constexpr const wchar_t* kItemName = L"WScript";

const wchar_t* EngineName(const std::wstring& file) {
    const std::wstring extension = std::filesystem::path(file).extension().wstring();
    if (_wcsicmp(extension.c_str(), L".js") == 0) return L"JScript";
    if (_wcsicmp(extension.c_str(), L".vbs") == 0) return L"VBScript";
    return nullptr;
}

std::wstring TextOf(BSTR text) {
    return text ? text : L"";
}

void Free(EXCEPINFO& exception) {
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
}

}  // namespace

STDMETHODIMP ScriptSite::QueryInterface(REFIID iid, void** out) {
    *out = nullptr;
    if (iid == IID_IUnknown || iid == IID_IActiveScriptSite) {
        *out = static_cast<IActiveScriptSite*>(this);
    } else if (iid == IID_IActiveScriptSiteWindow) {
        *out = static_cast<IActiveScriptSiteWindow*>(this);
    }
    return *out ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP ScriptSite::GetLCID(LCID* lcid) {
    *lcid = kEnglish;
    return S_OK;
}

STDMETHODIMP ScriptSite::GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item,
                                     ITypeInfo** info) {
    if (info) *info = nullptr;
    if (item) *item = nullptr;
    if (_wcsicmp(name, kItemName) != 0) return TYPE_E_ELEMENTNOTFOUND;
    if ((mask & SCRIPTINFO_IUNKNOWN) && item) *item = &wscript_;
    return S_OK;
}

STDMETHODIMP ScriptSite::OnScriptError(IActiveScriptError* error) {
    if (wscript_.QuitCode()) return S_OK;
    failed_ = true;
    EXCEPINFO exception{};
    DWORD context = 0;
    ULONG line = 0;
    LONG column = 0;
    error->GetExceptionInfo(&exception);
    error->GetSourcePosition(&context, &line, &column);
    wchar_t status[16];
    std::swprintf(status, 16, L"%08lX", static_cast<unsigned long>(exception.scode));
    WriteLine(stderr, (context < files_.size() ? files_[context] : L"?") + L":" +
                          std::to_wstring(line + 1) + L":" + std::to_wstring(column + 1) +
                          L": error " + status + L": " + TextOf(exception.bstrSource) + L": " +
                          TextOf(exception.bstrDescription));
    Free(exception);
    return S_OK;
}

STDMETHODIMP ScriptSite::GetWindow(HWND* window) {
    *window = nullptr;
    return S_OK;
}

ScriptEngine::~ScriptEngine() {
    if (!engine_) return;
    engine_->SetScriptState(SCRIPTSTATE_DISCONNECTED);
    parser_.Reset();
    engine_->Close();
}

HRESULT ScriptEngine::Start(const std::wstring& file) {
    const wchar_t* name = EngineName(file);
    CLSID clsid;
    if (!name || FAILED(CLSIDFromProgID(name, &clsid))) return REGDB_E_CLASSNOTREG;
    HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript,
                                  engine_.ReceiveVoid());
    if (FAILED(hr)) return hr;
    hr = engine_->QueryInterface(__uuidof(IActiveScriptParse), parser_.ReceiveVoid());
    if (SUCCEEDED(hr)) hr = engine_->SetScriptSite(&site_);
    if (SUCCEEDED(hr)) hr = parser_->InitNew();
    if (SUCCEEDED(hr)) hr = engine_->AddNamedItem(kItemName, SCRIPTITEM_ISVISIBLE);
    if (SUCCEEDED(hr)) hr = engine_->SetScriptState(SCRIPTSTATE_STARTED);
    wscript_.SetGlobals([this] {
        quorvane::ComPtr<IDispatch> globals;
        engine_->GetScriptDispatch(nullptr, globals.Receive());
        return globals;
    });
    return hr;
}

bool ScriptEngine::Run(const std::wstring& file, const std::wstring& code) {
    site_.AddFile(file);
    const HRESULT hr = parser_->ParseScriptText(code.c_str(), nullptr, nullptr, nullptr, files_++,
                                                0, SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
    return SUCCEEDED(hr) && !site_.Failed() && !wscript_.QuitCode();
}

}  // namespace scripthost
