// Automation error information: how wrong use of an interface is explained to the caller.
#pragma once

#include <windows.h>
#include <ole2.h>

namespace quorvane {

// Installs an error-information object for the calling thread and returns the status, or
// DISP_E_EXCEPTION when that is S_OK. The source is the ProgID registered for the class, left out
// when there is none; help context and file are set only when both are given. A `text` below
// 0x10000 is the identifier of a string resource ("Unknown Error" when there is no such string).
HRESULT ReportComError(REFCLSID clsid, LPCOLESTR text, DWORD helpContext, LPCOLESTR helpFile,
                       REFIID iid, HRESULT status);

}  // namespace quorvane
