#include "tests/scripts/host/script_object.h"

#include <oleauto.h>

#include <cwchar>

namespace scripthost {
namespace {

constexpr LCID kEnglish = 0x409;

// Variant that frees what it holds.
struct Converted : VARIANT {
    Converted() { VariantInit(this); }
    ~Converted() { VariantClear(this); }
    Converted(const Converted&) = delete;
    Converted& operator=(const Converted&) = delete;
};

void Convert(const VARIANT& value, VARTYPE type, Converted& out) {
    const HRESULT hr =
        VariantChangeTypeEx(&out, const_cast<VARIANT*>(&value), kEnglish, VARIANT_ALPHABOOL, type);
    if (FAILED(hr)) throw ScriptError{hr, L"An argument has the wrong type"};
}

void FillException(const ScriptError& error, EXCEPINFO& out) {
    out = {};
    out.scode = error.status;
    out.bstrSource = SysAllocString(L"scripthost");
    out.bstrDescription = SysAllocString(error.text.c_str());
}

}  // namespace

const VARIANT& Arguments::At(UINT index) const {
    if (index >= Count()) throw ScriptError{DISP_E_BADPARAMCOUNT, L"An argument is missing"};
    const VARIANT& value = parameters_.rgvarg[Count() - 1 - index];
    return value.vt == (VT_BYREF | VT_VARIANT) ? *value.pvarVal : value;
}

std::wstring Arguments::Text(UINT index) const {
    Converted text;
    Convert(At(index), VT_BSTR, text);
    return std::wstring(text.bstrVal ? text.bstrVal : L"", SysStringLen(text.bstrVal));
}

long Arguments::Number(UINT index) const {
    Converted number;
    Convert(At(index), VT_I4, number);
    return number.lVal;
}

IDispatch& Arguments::Object(UINT index) const {
    const VARIANT& value = At(index);
    if (value.vt != VT_DISPATCH || !value.pdispVal) {
        throw ScriptError{DISP_E_TYPEMISMATCH, L"An argument is no object"};
    }
    return *value.pdispVal;
}

STDMETHODIMP ScriptObject::QueryInterface(REFIID iid, void** out) {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *out = known ? static_cast<IDispatch*>(this) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP ScriptObject::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

STDMETHODIMP ScriptObject::GetTypeInfo(UINT, LCID, ITypeInfo** out) {
    *out = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP ScriptObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    for (UINT index = 0; index < count; ++index) ids[index] = DISPID_UNKNOWN;
    for (std::size_t index = 0; index < entries_.size(); ++index) {
        if (_wcsicmp(names[0], entries_[index].name.c_str()) != 0) continue;
        ids[0] = static_cast<DISPID>(index + 1);
        return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
    return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP ScriptObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                  VARIANT* result, EXCEPINFO* exception, UINT*) {
    const Member* member = Find(id);
    if (!member || !(flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET))) {
        return DISP_E_MEMBERNOTFOUND;
    }
    Converted value;
    try {
        (*member)(Arguments(*parameters), value);
    } catch (const ScriptError& error) {
        if (!exception) return error.status;
        FillException(error, *exception);
        return DISP_E_EXCEPTION;
    }
    if (result) {
        *result = value;
        value.vt = VT_EMPTY;  // what it holds is the caller's now
    }
    return S_OK;
}

void ScriptObject::Add(const wchar_t* name, Member member) {
    entries_.push_back({name, std::move(member)});
}

const ScriptObject::Member* ScriptObject::Find(DISPID id) const {
    if (id == DISPID_VALUE) return default_ ? &default_ : nullptr;
    const auto index = static_cast<std::size_t>(id) - 1;
    return index < entries_.size() ? &entries_[index].member : nullptr;
}

void SetText(VARIANT& result, std::wstring_view text) {
    result.vt = VT_BSTR;
    result.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

void SetNumber(VARIANT& result, long number) {
    result.vt = VT_I4;
    result.lVal = number;
}

void SetObject(VARIANT& result, IDispatch* object) {
    object->AddRef();
    result.vt = VT_DISPATCH;
    result.pdispVal = object;
}

}  // namespace scripthost
