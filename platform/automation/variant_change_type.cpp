#include <new>
#include <string>

#include "number.h"
#include "variant.h"

using namespace quorvane::platform;

namespace {

constexpr int kSingleDigits = 7;
constexpr int kDoubleDigits = 15;

std::u16string_view TextOf(BSTR text) {
    return {text, SysStringLen(text)};
}

bool EqualIgnoreCase(std::u16string_view text, std::u16string_view lowerCase) {
    if (text.size() != lowerCase.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const char16_t folded = c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
        if (folded != lowerCase[i]) return false;
    }
    return true;
}

// The unsigned types take the bits of true, which is -1.
bool IsUnsigned(VARTYPE type) {
    return type == VT_UI1 || type == VT_UI2 || type == VT_UI4 || type == VT_UI8 || type == VT_UINT;
}

HRESULT BoolFromText(std::u16string_view text, VARIANT& result) {
    const bool isTrue = EqualIgnoreCase(text, u"true") || text == u"#TRUE#";
    if (isTrue || EqualIgnoreCase(text, u"false") || text == u"#FALSE#") {
        result.boolVal = isTrue ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    Number number;
    return ParseNumber(text, number) ? StoreNumber(number, VT_BOOL, result) : DISP_E_TYPEMISMATCH;
}

HRESULT ToNumber(const VARIANT& value, VARTYPE type, VARIANT& result) {
    Number number;
    if (value.vt == VT_BSTR) {
        const std::u16string_view text = TextOf(value.bstrVal);
        if (type == VT_BOOL) return BoolFromText(text, result);
        if (!ParseNumber(text, number)) return DISP_E_TYPEMISMATCH;
    } else if (!NumberOf(value, number)) {
        return DISP_E_TYPEMISMATCH;
    }
    if (value.vt == VT_BOOL && IsUnsigned(type)) {
        result.ullVal = value.boolVal ? ~ULONGLONG{0} : 0;
        return S_OK;
    }
    return StoreNumber(number, type, result);
}

HRESULT ToText(const VARIANT& value, USHORT flags, VARIANT& result) {
    std::u16string text;
    Number number;
    if (value.vt == VT_BOOL && (flags & VARIANT_ALPHABOOL)) {
        text = value.boolVal ? u"True" : u"False";
    } else if (value.vt != VT_EMPTY) {
        if (!NumberOf(value, number)) return DISP_E_TYPEMISMATCH;
        text = FormatNumber(number, value.vt == VT_R4 ? kSingleDigits : kDoubleDigits);
    }
    result.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return result.bstrVal ? S_OK : E_OUTOFMEMORY;
}

HRESULT ToInterface(const VARIANT& value, VARTYPE type, VARIANT& result) {
    if (value.vt != VT_UNKNOWN && value.vt != VT_DISPATCH) return DISP_E_TYPEMISMATCH;
    result.punkVal = nullptr;
    if (!value.punkVal) return S_OK;
    void* object = nullptr;
    const HRESULT hr =
        value.punkVal->QueryInterface(type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &object);
    result.byref = object;
    return FAILED(hr) ? DISP_E_TYPEMISMATCH : S_OK;
}

// Makes a value of the type, which differs from the value's own.
HRESULT Convert(const VARIANT& value, USHORT flags, VARTYPE type, VARIANT& result) {
    result = {};
    result.vt = type;
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_ERROR:
            return DISP_E_TYPEMISMATCH;
        case VT_BSTR:
            return ToText(value, flags, result);
        case VT_UNKNOWN:
        case VT_DISPATCH:
            return ToInterface(value, type, result);
        default:
            return ToNumber(value, type, result);
    }
}

}  // namespace

HRESULT VariantChangeTypeEx(VARIANTARG* destination, const VARIANTARG* source, LCID, USHORT flags,
                            VARTYPE type) {
    HRESULT hr = CheckVariantType(type);
    if (FAILED(hr)) return hr;
    if (type & VT_BYREF) return DISP_E_TYPEMISMATCH;
    VARIANT value;
    hr = Dereference(*source, value);
    if (FAILED(hr)) return hr;
    if (value.vt == type) return VariantCopyInd(destination, source);
    hr = CheckVariantType(destination->vt);
    if (FAILED(hr)) return hr;
    VARIANT result;
    try {
        hr = Convert(value, flags, type, result);
    } catch (const std::bad_alloc&) {
        hr = E_OUTOFMEMORY;
    }
    if (FAILED(hr)) return hr;
    VariantClear(destination);
    *destination = result;
    return S_OK;
}

HRESULT VariantChangeType(VARIANTARG* destination, const VARIANTARG* source, USHORT flags,
                          VARTYPE type) {
    return VariantChangeTypeEx(destination, source, LOCALE_USER_DEFAULT, flags, type);
}
