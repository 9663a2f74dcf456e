#include "variant.h"

#include <cstring>

namespace quorvane::platform {

std::size_t ReferencedSize(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return 8;
        default:
            return 4;
    }
}

HRESULT CheckVariantType(VARTYPE type) {
    const bool isReference = type & VT_BYREF;
    switch (type & ~VT_BYREF) {
        case VT_EMPTY:
        case VT_NULL:
            return isReference ? DISP_E_BADVARTYPE : S_OK;
        case VT_VARIANT:
            return isReference ? S_OK : DISP_E_BADVARTYPE;
        case VT_I1:
        case VT_I2:
        case VT_I4:
        case VT_I8:
        case VT_UI1:
        case VT_UI2:
        case VT_UI4:
        case VT_UI8:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_BOOL:
        case VT_ERROR:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return S_OK;
        default:
            return DISP_E_BADVARTYPE;
    }
}

HRESULT Dereference(const VARIANT& variant, VARIANT& value) {
    const VARIANT* reference = &variant;
    if (reference->vt == (VT_BYREF | VT_VARIANT)) {
        reference = reference->pvarVal;
        if (!reference || reference->vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
    }
    const HRESULT hr = CheckVariantType(reference->vt);
    if (FAILED(hr)) return hr;
    if (!(reference->vt & VT_BYREF)) {
        value = *reference;
        return S_OK;
    }
    if (!reference->byref) return E_INVALIDARG;
    value = {};
    value.vt = static_cast<VARTYPE>(reference->vt & ~VT_BYREF);
    std::memcpy(&value.llVal, reference->byref, ReferencedSize(value.vt));
    return S_OK;
}

}  // namespace quorvane::platform

using namespace quorvane::platform;

namespace {

// Turns a value that somebody else owns into one that owns its text or its reference.
HRESULT Own(VARIANT& value) {
    if (value.vt == VT_BSTR) {
        // The copy of a null text is an empty one.
        value.bstrVal = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(value.bstrVal),
                                              SysStringByteLen(value.bstrVal));
        if (!value.bstrVal) return E_OUTOFMEMORY;
    } else if ((value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH) && value.punkVal) {
        value.punkVal->AddRef();
    }
    return S_OK;
}

// Replaces what the destination owns by a copy of the value, which the destination may own itself.
HRESULT Replace(VARIANT& destination, VARIANT value) {
    HRESULT hr = CheckVariantType(destination.vt);
    if (FAILED(hr)) return hr;
    hr = Own(value);
    if (FAILED(hr)) return hr;
    VariantClear(&destination);
    destination = value;
    return S_OK;
}

}  // namespace

void VariantInit(VARIANTARG* variant) {
    *variant = {};
}

HRESULT VariantClear(VARIANTARG* variant) {
    const HRESULT hr = CheckVariantType(variant->vt);
    if (FAILED(hr)) return hr;
    const VARIANT old = *variant;
    // The variant is empty before foreign code may run.
    variant->vt = VT_EMPTY;
    if (old.vt == VT_BSTR) {
        SysFreeString(old.bstrVal);
    } else if ((old.vt == VT_UNKNOWN || old.vt == VT_DISPATCH) && old.punkVal) {
        old.punkVal->Release();
    }
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* destination, const VARIANTARG* source) {
    const HRESULT hr = CheckVariantType(source->vt);
    if (FAILED(hr) || destination == source) return hr;
    return Replace(*destination, *source);
}

HRESULT VariantCopyInd(VARIANT* destination, const VARIANTARG* source) {
    if (!(source->vt & VT_BYREF)) return VariantCopy(destination, source);
    VARIANT value;
    const HRESULT hr = Dereference(*source, value);
    return FAILED(hr) ? hr : Replace(*destination, value);
}
