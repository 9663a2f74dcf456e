#include "automation/error_info.h"

#include <ole2.h>
#include <oleauto.h>

#include <cstdint>

#include "automation/com_ptr.h"
#include "automation/module.h"

namespace quorvane {
namespace {

constexpr std::uintptr_t kFirstPointer = 0x10000;
constexpr int kResourceTextCapacity = 1024;  // UTF-16 units

// OLECHAR* where the SDK forgot a const.
LPOLESTR Mutable(LPCOLESTR text) {
    return const_cast<LPOLESTR>(text);
}

void FillErrorInfo(ICreateErrorInfo& info, REFCLSID clsid, LPCOLESTR text, DWORD helpContext,
                   LPCOLESTR helpFile, REFIID iid) {
    info.SetGUID(iid);
    LPOLESTR progId = nullptr;
    if (SUCCEEDED(ProgIDFromCLSID(clsid, &progId))) {
        info.SetSource(progId);
        CoTaskMemFree(progId);
    }
    if (helpContext != 0 && helpFile) {
        info.SetHelpContext(helpContext);
        info.SetHelpFile(Mutable(helpFile));
    }
    info.SetDescription(Mutable(text));
}

}  // namespace

HRESULT ReportComError(REFCLSID clsid, LPCOLESTR text, DWORD helpContext, LPCOLESTR helpFile,
                       REFIID iid, HRESULT status) {
    WCHAR resourceText[kResourceTextCapacity];
    const auto resource = reinterpret_cast<std::uintptr_t>(text);
    if (resource < kFirstPointer) {
        const int length = LoadStringW(ModuleInstance(), static_cast<UINT>(resource), resourceText,
                                       kResourceTextCapacity);
        text = length > 0 ? resourceText : OLESTR("Unknown Error");
    }
    ComPtr<ICreateErrorInfo> creator;
    if (SUCCEEDED(CreateErrorInfo(creator.Receive()))) {
        FillErrorInfo(*creator.Get(), clsid, text, helpContext, helpFile, iid);
        ComPtr<IErrorInfo> info;
        if (SUCCEEDED(creator->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()))) {
            SetErrorInfo(0, info.Get());
        }
    }
    return status == S_OK ? DISP_E_EXCEPTION : status;
}

}  // namespace quorvane
