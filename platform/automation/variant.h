// What the functions on variants share.
#pragma once

#include <oleauto.h>

#include <cstddef>

namespace quorvane::platform {

// S_OK for the types that variants can have here, DISP_E_BADVARTYPE for all others.
HRESULT CheckVariantType(VARTYPE type);

// Bytes of what a VT_BYREF variant refers to, by the type without VT_BYREF.
std::size_t ReferencedSize(VARTYPE type);

// The value itself, or what it refers to when its type has VT_BYREF, without ownership of either.
// E_INVALIDARG for a null reference or one to a reference to a variant.
HRESULT Dereference(const VARIANT& variant, VARIANT& value);

}  // namespace quorvane::platform
