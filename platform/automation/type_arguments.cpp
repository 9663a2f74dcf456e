#include "type_arguments.h"

#include <oleauto.h>

#include "variant.h"

namespace quorvane::platform {
namespace {

// A variant passed by value. Size and alignment are given, so that no call has to work them out.
ffi_type* VariantType() {
    static ffi_type* elements[] = {&ffi_type_uint64, &ffi_type_pointer, &ffi_type_pointer, nullptr};
    static ffi_type type = {sizeof(VARIANT), alignof(VARIANT), FFI_TYPE_STRUCT, elements};
    return &type;
}

// How a value of that type is passed; null for a type that no parameter has.
ffi_type* ValueType(VARTYPE type) {
    switch (type) {
        case VT_UI1:
            return &ffi_type_uint8;
        case VT_I2:
        case VT_BOOL:
            return &ffi_type_sint16;
        case VT_I4:
            return &ffi_type_sint32;
        case VT_R4:
            return &ffi_type_float;
        case VT_R8:
            return &ffi_type_double;
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return &ffi_type_pointer;
        case VT_VARIANT:
            return VariantType();
        default:
            return nullptr;
    }
}

const TypeData& Referred(const TypeReference& reference) {
    return kTypeLibrary.types[static_cast<std::size_t>(reference.index)];
}

bool IsInterface(const TypeReference& reference) {
    return reference.type == VT_USERDEFINED && Referred(reference).kind == TKIND_DISPATCH;
}

// The type that a variant has for it, and the pointers in front of that: an enumeration is a long
// integer, a pointer to an interface an object.
VARTYPE VariantTypeOf(const TypeReference& reference, int& pointers) {
    pointers = reference.pointers;
    if (reference.type != VT_USERDEFINED) return reference.type;
    if (!IsInterface(reference)) return VT_I4;
    --pointers;
    return VT_DISPATCH;
}

}  // namespace

Argument::~Argument() {
    VariantClear(&kept_);
}

void Argument::Pass(const VARIANT& value) {
    type_ = ValueType(value.vt);
    __builtin_memcpy(&value_, &value.llVal, sizeof value.llVal);
}

void Argument::PassPointer(void* pointer) {
    type_ = &ffi_type_pointer;
    value_.pointer = pointer;
}

HRESULT Argument::Set(const ParameterData& parameter, const VARIANT& given) {
    int pointers;
    const VARTYPE type = VariantTypeOf(parameter.type, pointers);
    if (pointers > 1) return DISP_E_BADVARTYPE;
    if (pointers == 1) return SetReference(type, parameter.flags, given);
    return IsInterface(parameter.type) ? SetInterface(parameter, given) : SetValue(type, given);
}

HRESULT Argument::SetValue(VARTYPE type, const VARIANT& given) {
    if (type == VT_VARIANT) {
        // As it is, references included: the caller goes on owning it.
        const HRESULT hr = CheckVariantType(given.vt);
        if (FAILED(hr)) return hr;
        type_ = ValueType(type);
        value_.variant = given;
        return S_OK;
    }
    VARIANT value;
    HRESULT hr = Dereference(given, value);
    if (FAILED(hr)) return hr == E_INVALIDARG ? DISP_E_TYPEMISMATCH : hr;
    if (value.vt != type) {
        hr = VariantChangeTypeEx(&kept_, &value, LOCALE_USER_DEFAULT, 0, type);
        if (FAILED(hr)) return hr;
        value = kept_;
    }
    Pass(value);
    return S_OK;
}

HRESULT Argument::SetInterface(const ParameterData& parameter, const VARIANT& given) {
    VARIANT value;
    const HRESULT hr = Dereference(given, value);
    if (FAILED(hr) || (value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN)) {
        return DISP_E_TYPEMISMATCH;
    }
    void* object = nullptr;
    if (value.punkVal &&
        FAILED(value.punkVal->QueryInterface(Referred(parameter.type).guid, &object))) {
        return DISP_E_TYPEMISMATCH;
    }
    kept_.vt = VT_UNKNOWN;
    kept_.punkVal = static_cast<IUnknown*>(object);
    PassPointer(object);
    return S_OK;
}

HRESULT Argument::SetReference(VARTYPE type, USHORT flags, const VARIANT& given) {
    if (given.vt == (VT_BYREF | type)) {
        PassPointer(given.byref);
        return S_OK;
    }
    if (given.vt & VT_BYREF) return DISP_E_TYPEMISMATCH;
    // A plain value: the function gets a place of its own, and what it writes there is dropped.
    if (type == VT_VARIANT) {
        if (flags & PARAMFLAG_FIN) {
            const HRESULT hr = VariantCopy(&kept_, &given);
            if (FAILED(hr)) return hr;
        }
        PassPointer(&kept_);
        return S_OK;
    }
    if (!ValueType(type)) return DISP_E_BADVARTYPE;
    if (flags & PARAMFLAG_FIN) {
        const HRESULT hr = VariantChangeTypeEx(&kept_, &given, LOCALE_USER_DEFAULT, 0, type);
        if (FAILED(hr)) return hr;
    }
    kept_.vt = type;
    PassPointer(&kept_.llVal);
    return S_OK;
}

HRESULT Argument::SetResult(const ParameterData& parameter) {
    int pointers;
    const VARTYPE type = VariantTypeOf(parameter.type, pointers);
    if (pointers != 1 || !ValueType(type)) return DISP_E_BADVARTYPE;
    if (type == VT_VARIANT) {
        PassPointer(&kept_);
    } else {
        kept_.vt = type;
        PassPointer(&kept_.llVal);
    }
    return S_OK;
}

void Argument::TakeResult(VARIANT& result) {
    result = kept_;
    kept_ = {};
}

}  // namespace quorvane::platform
