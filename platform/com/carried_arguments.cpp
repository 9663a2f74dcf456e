#include "carried_arguments.h"

#include <cstring>

#include "platform/automation/variant.h"

namespace quorvane::platform {
namespace {

constexpr VARTYPE kVariantReference = VT_BYREF | VT_VARIANT;
constexpr VARTYPE kByteReference = VT_BYREF | VT_UI1;

// A value of its own in the object's apartment, and the argument that the object gets for it.
struct ReceivedArgument {
    VARIANT value{};

    ReceivedArgument() = default;
    ReceivedArgument(const ReceivedArgument&) = delete;
    ReceivedArgument& operator=(const ReceivedArgument&) = delete;
    ~ReceivedArgument() { VariantClear(&value); }

    // `type`: of the caller's argument.
    VARIANT As(VARTYPE type) {
        if (!(type & VT_BYREF)) return value;
        VARIANT reference{};
        reference.vt = type;
        reference.byref = type == kVariantReference ? static_cast<void*>(&value) : &value.llVal;
        return reference;
    }
};

// It stays null on its way, where a copy would be an empty string that whoever fills it in forgets.
bool IsNullString(const VARIANT& value) {
    return value.vt == VT_BSTR && !value.bstrVal;
}

// Puts the value, which goes with that, in the place of what the argument refers to.
void Store(const VARIANT& reference, const VARIANT& value) {
    VARIANT old;
    if (reference.vt == kVariantReference) {
        old = *reference.pvarVal;
        *reference.pvarVal = value;
    } else {
        Dereference(reference, old);
        std::memcpy(reference.byref, &value.llVal, ReferencedSize(old.vt));
    }
    VariantClear(&old);
}

}  // namespace

HRESULT CarriedValue::Pack(const VARIANT& value) {
    VariantClear(&value_);
    object_ = {};
    const bool isObject = value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN;
    if (IsNullString(value)) {
        value_ = value;
        return S_OK;
    }
    if (!isObject || !value.punkVal) return VariantCopy(&value_, &value);
    value_.vt = value.vt;
    value_.punkVal = nullptr;
    return ObjectReference::To(value.punkVal, object_);
}

HRESULT CarriedValue::Unpack(VARIANT& value) const {
    value = {};
    if (IsNullString(value_)) {
        value = value_;
        return S_OK;
    }
    if (!object_) return VariantCopy(&value, &value_);
    void* object = nullptr;
    const HRESULT hr =
        object_.Get(value_.vt == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &object);
    if (FAILED(hr)) return hr;
    value.vt = value_.vt;
    value.byref = object;
    return S_OK;
}

HRESULT CarriedArguments::Pack(const DISPPARAMS& params) {
    params_ = &params;
    arguments_ = std::vector<Argument>(params.cArgs);
    for (UINT i = 0; i < params.cArgs; ++i) {
        Argument& argument = arguments_[i];
        argument.source = &params.rgvarg[i];
        // A reference to a variant that is a reference itself goes as the latter.
        if (argument.source->vt == kVariantReference && argument.source->pvarVal &&
            (argument.source->pvarVal->vt & VT_BYREF)) {
            argument.source = argument.source->pvarVal;
        }
        // The start of a block: its size stands in another argument, and only one byte would go.
        if (argument.source->vt == kByteReference) return DISP_E_TYPEMISMATCH;
        VARIANT value;
        HRESULT hr = Dereference(*argument.source, value);
        if (SUCCEEDED(hr)) hr = argument.value.Pack(value);
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

HRESULT CarriedArguments::Invoke(IDispatch& object, DISPID member, REFIID riid, LCID lcid,
                                 WORD flags, CarriedValue* result, EXCEPINFO* exception,
                                 UINT* argumentInError) {
    std::vector<ReceivedArgument> received(arguments_.size());
    std::vector<VARIANT> list(arguments_.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const HRESULT hr = arguments_[i].value.Unpack(received[i].value);
        if (FAILED(hr)) return hr;
        list[i] = received[i].As(arguments_[i].source->vt);
    }
    DISPPARAMS params = *params_;
    params.rgvarg = list.data();
    ReceivedArgument own;
    if (exception) *exception = {};
    const HRESULT outcome =
        object.Invoke(member, riid, lcid, flags, &params, result ? &own.value : nullptr, exception,
                      argumentInError);
    if (exception && exception->pfnDeferredFillIn) {
        exception->pfnDeferredFillIn(exception);
        exception->pfnDeferredFillIn = nullptr;
    }
    HRESULT hr = result ? result->Pack(own.value) : S_OK;
    for (std::size_t i = 0; i < list.size() && SUCCEEDED(hr); ++i) {
        if (!(list[i].vt & VT_BYREF)) continue;
        hr = arguments_[i].value.Pack(received[i].value);
        arguments_[i].isBack = SUCCEEDED(hr);
    }
    return FAILED(hr) ? hr : outcome;
}

HRESULT CarriedArguments::GiveBack() {
    for (Argument& argument : arguments_) {
        if (!argument.isBack) continue;
        VARIANT value;
        const HRESULT hr = argument.value.Unpack(value);
        if (FAILED(hr)) return hr;
        Store(*argument.source, value);
    }
    return S_OK;
}

}  // namespace quorvane::platform
