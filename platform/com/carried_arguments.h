// Values and arguments on their way from one apartment into another.
#pragma once

#include <oleauto.h>

#include <vector>

#include "object_reference.h"

namespace quorvane::platform {

// A variant without VT_BYREF. Packed in one apartment and unpacked in another: text is copied, and
// an object becomes a proxy.
class CarriedValue {
public:
    CarriedValue() = default;
    CarriedValue(const CarriedValue&) = delete;
    CarriedValue& operator=(const CarriedValue&) = delete;
    ~CarriedValue() { VariantClear(&value_); }

    HRESULT Pack(const VARIANT& value);
    // `value` is overwritten, and the caller's then.
    HRESULT Unpack(VARIANT& value) const;

private:
    VARIANT value_{};  // of an interface pointer only the type
    ObjectReference object_;
};

// Arguments of Invoke. What the caller's references refer to goes into the object's apartment with
// them and comes back.
class CarriedArguments {
public:
    // In the caller's apartment. `params` stay where they are until GiveBack. DISP_E_TYPEMISMATCH
    // when one of them refers to a byte.
    HRESULT Pack(const DISPPARAMS& params);
    // In the object's. Null `result`, `exception` and `argumentInError` are null for it, too.
    HRESULT Invoke(IDispatch& object, DISPID member, REFIID riid, LCID lcid, WORD flags,
                   CarriedValue* result, EXCEPINFO* exception, UINT* argumentInError);
    // In the caller's again: stores what references refer to.
    HRESULT GiveBack();

private:
    struct Argument {
        const VARIANT* source = nullptr;  // the caller's
        CarriedValue value;
        bool isBack = false;  // the object has been called with it
    };

    std::vector<Argument> arguments_;
    const DISPPARAMS* params_ = nullptr;
};

}  // namespace quorvane::platform
