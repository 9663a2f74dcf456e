#include "type_info.h"

#include <oleauto.h>

#include <algorithm>
#include <new>
#include <string_view>

#include "type_invoke.h"

namespace quorvane::platform {
namespace {

constexpr WORD kPointerSize = sizeof(void*);
constexpr WORD kInheritedFunctions = 7;  // those of IUnknown and IDispatch
constexpr MEMBERID kFirstConstant = 0x40000000;

constexpr char16_t Fold(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

// A description of a constant together with its value.
struct ConstantDescription {
    VARDESC description;
    VARIANT value;
};

// The parameters that have names for callers: not the value of a property put, not the result.
std::span<const ParameterData> NamedParameters(const FunctionData& function) {
    auto parameters = function.parameters;
    const bool hidesLast = !parameters.empty() && (function.kind == INVOKE_PROPERTYPUT ||
                                                   (parameters.back().flags & PARAMFLAG_FRETVAL));
    return parameters.first(parameters.size() - (hidesLast ? 1 : 0));
}

}  // namespace

HRESULT GiveText(const OLECHAR* text, BSTR* out) {
    if (!out) return S_OK;
    *out = SysAllocString(text);
    return text && !*out ? E_OUTOFMEMORY : S_OK;
}

bool EqualNames(const OLECHAR* a, const OLECHAR* b) {
    const std::u16string_view x(a);
    const std::u16string_view y(b);
    return std::equal(x.begin(), x.end(), y.begin(), y.end(),
                      [](char16_t c, char16_t d) { return Fold(c) == Fold(d); });
}

const FunctionData* TypeInfo::FindFunction(MEMBERID member) const {
    const auto found =
        std::find_if(data_.functions.begin(), data_.functions.end(),
                     [member](const FunctionData& function) { return function.member == member; });
    return found == data_.functions.end() ? nullptr : &*found;
}

const FunctionData* TypeInfo::FindFunction(const OLECHAR* name) const {
    const auto found = std::find_if(
        data_.functions.begin(), data_.functions.end(),
        [name](const FunctionData& function) { return EqualNames(function.name, name); });
    return found == data_.functions.end() ? nullptr : &*found;
}

HRESULT TypeInfo::QueryInterface(REFIID riid, void** object) {
    if (!object) return E_POINTER;
    const bool known = riid == IID_IUnknown || riid == IID_ITypeInfo;
    *object = known ? static_cast<ITypeInfo*>(this) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT TypeInfo::GetTypeAttr(TYPEATTR** attributes) {
    if (!attributes) return E_INVALIDARG;
    auto* const made = new (std::nothrow) TYPEATTR{};
    *attributes = made;
    if (!made) return E_OUTOFMEMORY;
    made->guid = data_.guid;
    made->memidConstructor = MEMBERID_NIL;
    made->memidDestructor = MEMBERID_NIL;
    made->typekind = side_ == Side::Table ? TKIND_INTERFACE : data_.kind;
    made->cFuncs = static_cast<WORD>(data_.functions.size());
    made->cVars = static_cast<WORD>(data_.constants.size());
    made->wTypeFlags = data_.flags;
    made->cbSizeInstance = data_.kind == TKIND_ENUM ? sizeof(LONG) : kPointerSize;
    made->cbAlignment = static_cast<WORD>(made->cbSizeInstance);
    made->cImplTypes = static_cast<WORD>(data_.implemented.size());
    if (IsInterface()) {
        const WORD own = side_ == Side::Table ? made->cFuncs : WORD{0};
        made->cbSizeVft = static_cast<WORD>((kInheritedFunctions + own) * kPointerSize);
        made->cImplTypes = index_ < 0 ? 0 : 1;
    }
    return S_OK;
}

void TypeInfo::ReleaseTypeAttr(TYPEATTR* attributes) {
    delete attributes;
}

HRESULT TypeInfo::GetFuncDesc(UINT index, FUNCDESC** description) {
    if (!description) return E_INVALIDARG;
    *description = nullptr;
    if (index >= data_.functions.size()) return TYPE_E_ELEMENTNOTFOUND;
    *description = DescribeFunction(data_.functions[index], side_);
    return *description ? S_OK : E_OUTOFMEMORY;
}

void TypeInfo::ReleaseFuncDesc(FUNCDESC* description) {
    FreeFunctionDescription(description);
}

HRESULT TypeInfo::GetVarDesc(UINT index, VARDESC** description) {
    if (!description) return E_INVALIDARG;
    *description = nullptr;
    if (index >= data_.constants.size()) return TYPE_E_ELEMENTNOTFOUND;
    auto* const made = new (std::nothrow) ConstantDescription{};
    if (!made) return E_OUTOFMEMORY;
    made->value.vt = VT_I4;
    made->value.lVal = data_.constants[index].value;
    made->description.memid = kFirstConstant + static_cast<MEMBERID>(index);
    made->description.lpvarValue = &made->value;
    made->description.elemdescVar.tdesc.vt = VT_INT;
    made->description.varkind = VAR_CONST;
    *description = &made->description;
    return S_OK;
}

void TypeInfo::ReleaseVarDesc(VARDESC* description) {
    // The description comes first in what holds it.
    delete reinterpret_cast<ConstantDescription*>(description);
}

HRESULT TypeInfo::GetNames(MEMBERID member, BSTR* names, UINT room, UINT* count) {
    if (!names || !count) return E_INVALIDARG;
    *count = 0;
    const FunctionData* const function = FindFunction(member);
    if (!function) return TYPE_E_ELEMENTNOTFOUND;
    // Here the result has its name: it is a parameter of the function as the table has it.
    const bool isPut = function->kind == INVOKE_PROPERTYPUT;
    const auto parameters = function->parameters.first(function->parameters.size() - isPut);
    const UINT wanted = std::min(room, static_cast<UINT>(parameters.size()) + 1);
    for (; *count < wanted; ++*count) {
        const OLECHAR* const name = *count == 0 ? function->name : parameters[*count - 1].name;
        const HRESULT hr = GiveText(name, &names[*count]);
        if (FAILED(hr)) {
            while (*count > 0) SysFreeString(names[--*count]);
            return hr;
        }
    }
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeOfImplType(UINT index, HREFTYPE* type) {
    if (!type) return E_INVALIDARG;
    // The way from the dispatch side of a dual interface to its table of functions, and back.
    if (index == static_cast<UINT>(-1)) {
        if (!IsDual()) return TYPE_E_ELEMENTNOTFOUND;
        *type = ReferenceTo(index_, side_ == Side::Dispatch ? Side::Table : Side::Dispatch);
        return S_OK;
    }
    if (IsInterface() && index_ >= 0 && index == 0) {
        *type = kDispatchReference;
        return S_OK;
    }
    if (index >= data_.implemented.size()) return TYPE_E_ELEMENTNOTFOUND;
    *type = ReferenceTo(data_.implemented[index].index, Side::Dispatch);
    return S_OK;
}

HRESULT TypeInfo::GetImplTypeFlags(UINT index, INT* flags) {
    if (!flags) return E_INVALIDARG;
    *flags = 0;
    if (IsInterface() && index_ >= 0 && index == 0) return S_OK;
    if (index >= data_.implemented.size()) return TYPE_E_ELEMENTNOTFOUND;
    *flags = data_.implemented[index].flags;
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) {
    if (!info) return E_INVALIDARG;
    *info = FindType(type);
    return *info ? S_OK : TYPE_E_ELEMENTNOTFOUND;
}

HRESULT TypeInfo::GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) {
    if (!names || !ids || count == 0) return E_INVALIDARG;
    std::fill(ids, ids + count, MEMBERID_NIL);
    const FunctionData* const function = FindFunction(names[0]);
    if (!function) return DISP_E_UNKNOWNNAME;
    ids[0] = function->member;
    HRESULT hr = S_OK;
    const auto parameters = NamedParameters(*function);
    for (UINT i = 1; i < count; ++i) {
        const auto found = std::find_if(
            parameters.begin(), parameters.end(),
            [&](const ParameterData& parameter) { return EqualNames(parameter.name, names[i]); });
        if (found == parameters.end()) {
            hr = DISP_E_UNKNOWNNAME;
        } else {
            ids[i] = static_cast<MEMBERID>(found - parameters.begin());
        }
    }
    return hr;
}

HRESULT TypeInfo::Invoke(PVOID instance, MEMBERID member, WORD flags, DISPPARAMS* params,
                         VARIANT* result, EXCEPINFO* exception, UINT* argumentInError) {
    if (!instance || !params) return E_INVALIDARG;
    // What no caller wants and the data can't do: members without a place in a table.
    if (!IsDual()) return E_NOTIMPL;
    const auto found = std::find_if(data_.functions.begin(), data_.functions.end(),
                                    [&](const FunctionData& function) {
                                        return function.member == member && (function.kind & flags);
                                    });
    if (found == data_.functions.end()) return DISP_E_MEMBERNOTFOUND;
    try {
        return InvokeFunction(instance, data_.guid, *found, *params, result, exception,
                              argumentInError);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT TypeInfo::GetDocumentation(MEMBERID member, BSTR* name, BSTR* text, DWORD* helpContext,
                                   BSTR* helpFile) {
    const OLECHAR* foundName = data_.name;
    const OLECHAR* foundText = data_.help;
    const auto constant = static_cast<std::size_t>(member - kFirstConstant);
    if (member >= kFirstConstant && constant < data_.constants.size()) {
        foundName = data_.constants[constant].name;
        foundText = nullptr;
    } else if (member != MEMBERID_NIL) {
        const FunctionData* const function = FindFunction(member);
        if (!function) return TYPE_E_ELEMENTNOTFOUND;
        foundName = function->name;
        foundText = function->help;
    }
    if (helpContext) *helpContext = 0;
    if (helpFile) *helpFile = nullptr;
    const HRESULT hr = GiveText(foundName, name);
    return FAILED(hr) ? hr : GiveText(foundText, text);
}

HRESULT TypeInfo::GetContainingTypeLib(ITypeLib** library, UINT* index) {
    if (!library || index_ < 0) return E_INVALIDARG;
    *library = OwnTypeLibrary();
    if (index) *index = static_cast<UINT>(index_);
    return S_OK;
}

// Binding compilers, imported functions and the making of objects have no use here.
HRESULT TypeInfo::GetTypeComp(ITypeComp**) {
    return E_NOTIMPL;
}
HRESULT TypeInfo::GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) {
    return E_NOTIMPL;
}
HRESULT TypeInfo::AddressOfMember(MEMBERID, INVOKEKIND, PVOID*) {
    return E_NOTIMPL;
}
HRESULT TypeInfo::CreateInstance(IUnknown*, REFIID, PVOID*) {
    return E_NOTIMPL;
}
HRESULT TypeInfo::GetMops(MEMBERID, BSTR*) {
    return E_NOTIMPL;
}

}  // namespace quorvane::platform
