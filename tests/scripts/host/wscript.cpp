#include "tests/scripts/host/wscript.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "automation/com_ptr.h"
#include "automation/wide_string.h"
#include "tests/scripts/host/console.h"

namespace scripthost {
namespace {

using quorvane::ComPtr;

void Echo(const Arguments& arguments) {
    std::wstring line;
    for (UINT index = 0; index < arguments.Count(); ++index) {
        if (index > 0) line += L' ';
        line += arguments.Text(index);
    }
    WriteLine(stdout, line);
}

// Waits and dispatches messages meanwhile, so that calls from other apartments get through.
void Sleep(long milliseconds) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(std::max(milliseconds, 0L));
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        const ULONGLONG now = GetTickCount64();
        if (now >= end) return;
        MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(end - now), QS_ALLINPUT,
                                    MWMO_INPUTAVAILABLE);
    }
}

void CreateObject(const std::wstring& progId, VARIANT& result) {
    CLSID clsid;
    HRESULT hr = CLSIDFromProgID(progId.c_str(), &clsid);
    ComPtr<IDispatch> object;
    if (SUCCEEDED(hr)) {
        hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              object.ReceiveVoid());
    }
    if (FAILED(hr)) throw ScriptError{hr, L"Can't create object " + progId};
    SetObject(result, object.Get());
}

std::wstring ReadFile(const std::wstring& name) {
    std::ifstream file(std::filesystem::path(name), std::ios::binary);
    if (!file) throw ScriptError{HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), L"Can't read " + name};
    return quorvane::WidenBytes(std::string(std::istreambuf_iterator<char>(file), {}));
}

}  // namespace

ArgumentList::ArgumentList(std::vector<std::wstring> values) : values_(std::move(values)) {
    const auto item = [this](const Arguments& arguments, VARIANT& result) {
        SetText(result, At(arguments.Number(0)));
    };
    const auto count = [this](const Arguments&, VARIANT& result) {
        SetNumber(result, static_cast<long>(values_.size()));
    };
    AddDefault(item);
    Add(L"Item", item);
    Add(L"Count", count);
    Add(L"Length", count);
}

const std::wstring& ArgumentList::At(long index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= values_.size()) {
        throw ScriptError{DISP_E_BADINDEX, L"There is no such argument"};
    }
    return values_[static_cast<std::size_t>(index)];
}

WScript::WScript(const std::wstring& script, std::vector<std::wstring> arguments)
    : arguments_(std::move(arguments)) {
    Add(L"Echo", [](const Arguments& values, VARIANT&) { Echo(values); });
    Add(L"Sleep", [](const Arguments& values, VARIANT&) { Sleep(values.Number(0)); });
    Add(L"Quit", [this](const Arguments& values, VARIANT&) {
        quitCode_ = values.Count() > 0 ? values.Number(0) : 0;
        throw ScriptError{kQuit, L"The script has quit"};
    });
    Add(L"CreateObject",
        [](const Arguments& values, VARIANT& result) { CreateObject(values.Text(0), result); });
    Add(L"ConnectObject", [this](const Arguments& values, VARIANT&) {
        const HRESULT hr = ConnectEvents(values.Object(0), values.Text(1), globals_);
        if (FAILED(hr)) throw ScriptError{hr, L"Can't connect the events"};
    });
    Add(L"ReadFile", [](const Arguments& values, VARIANT& result) {
        SetText(result, ReadFile(values.Text(0)));
    });
    Add(L"Arguments", [this](const Arguments& values, VARIANT& result) {
        if (values.Count() > 0) {
            SetText(result, arguments_.At(values.Number(0)));
        } else {
            SetObject(result, &arguments_);
        }
    });
    const std::filesystem::path path = std::filesystem::absolute(script);
    Add(L"ScriptFullName",
        [path](const Arguments&, VARIANT& result) { SetText(result, path.wstring()); });
    Add(L"ScriptName",
        [path](const Arguments&, VARIANT& result) { SetText(result, path.filename().wstring()); });
}

}  // namespace scripthost
