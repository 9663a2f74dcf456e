// Those who want to hear when something of the control changes.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <vector>

#include "automation/com_ptr.h"

namespace quorvane {

struct Advice {
    DWORD cookie;
    DWORD flags;  // ADVF_...
    FORMATETC format;
    ComPtr<IAdviseSink> sink;
};

class AdviseList {
public:
    // Keeps the sink and gives *cookie a number that is never 0. E_POINTER for a null pointer.
    // Throws std::bad_alloc.
    HRESULT Add(const FORMATETC& format, DWORD flags, IAdviseSink* sink, DWORD* cookie);
    // OLE_E_NOCONNECTION for a number that is none.
    HRESULT Remove(DWORD cookie);
    // An enumerator of what is in the list now. E_POINTER or E_OUTOFMEMORY.
    HRESULT Enumerate(IEnumSTATDATA** out) const noexcept;

    // For telling them: a copy, since a sink may change the list while it is told. Those that want
    // to hear once are in the list no longer. Throws std::bad_alloc.
    std::vector<Advice> TakeTurn();

private:
    std::vector<Advice> advices_;
    DWORD lastCookie_ = 0;
};

}  // namespace quorvane
