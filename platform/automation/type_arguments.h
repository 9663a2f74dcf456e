// Arguments of a call by type information: what the caller gave, made into what the function takes.
#pragma once

#include <ffi.h>
#include <oaidl.h>

#include "type_data.h"

namespace quorvane::platform {

// One argument as the function gets it, and what has to be kept for it until the call is over.
class Argument {
public:
    Argument() = default;
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;
    ~Argument();

    // Converts `given` to the parameter's type. DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW ... when it
    // can't be; DISP_E_BADVARTYPE when no variant could.
    HRESULT Set(const ParameterData& parameter, const VARIANT& given);
    // Lets the parameter, the one marked retval, write into this argument.
    HRESULT SetResult(const ParameterData& parameter);
    // Moves what the function has written to the caller.
    void TakeResult(VARIANT& result);

    ffi_type* type() const { return type_; }
    void* value() { return &value_; }

private:
    HRESULT SetValue(VARTYPE type, const VARIANT& given);
    HRESULT SetInterface(const ParameterData& parameter, const VARIANT& given);
    HRESULT SetReference(VARTYPE type, USHORT flags, const VARIANT& given);
    void Pass(const VARIANT& value);
    void PassPointer(void* pointer);

    ffi_type* type_ = &ffi_type_pointer;
    // What is passed: a number, a pointer, or a variant as a whole.
    union {
        VARIANT variant;
        void* pointer;
    } value_ = {};
    VARIANT kept_ = {};  // a converted value, or the place that a reference refers to
};

}  // namespace quorvane::platform
