// Get and put of string properties, the same for every class of the model and the component.
#pragma once

#include "automation/boundary.h"
#include "automation/wide_string.h"

namespace quorvane {

// Gives the caller a new automation string with a copy of the member.
inline HRESULT GetText(const WideString& member, BSTR* out) noexcept {
    return ToBstr(member, out);
}

// Stores the text up to its first NUL; a null string stores the empty text.
inline HRESULT PutText(WideString& member, BSTR value) noexcept {
    return Guarded([&] {
        member = FromBstr(value);
        return S_OK;
    });
}

// Gives the caller a copy of a number.
template <class Value>
HRESULT GetValue(const Value& member, Value* out) noexcept {
    if (!out) return E_INVALIDARG;
    *out = member;
    return S_OK;
}

// The same for a number that the interface calls an enumeration.
template <class Enumeration>
HRESULT GetEnumeration(LONG member, Enumeration* out) noexcept {
    if (!out) return E_INVALIDARG;
    StoreEnumeration(member, out);
    return S_OK;
}

}  // namespace quorvane
