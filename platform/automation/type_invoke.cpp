#include "type_invoke.h"

#include <oleauto.h>

#include <ffi.h>

#include <memory>
#include <vector>

#include "type_arguments.h"

namespace quorvane::platform {
namespace {

bool HasResult(const FunctionData& function) {
    return !function.parameters.empty() && (function.parameters.back().flags & PARAMFLAG_FRETVAL);
}

// Parameters that the caller gives.
UINT GivenCount(const FunctionData& function) {
    return static_cast<UINT>(function.parameters.size()) - (HasResult(function) ? 1 : 0);
}

// Finds for each parameter the place of its argument in the caller's list: named ones by their
// number, the others by their order from the end.
HRESULT PlaceArguments(const FunctionData& function, const DISPPARAMS& params,
                       std::vector<UINT>& places) {
    constexpr UINT kNone = ~UINT{0};
    const UINT count = GivenCount(function);
    if (params.cNamedArgs > params.cArgs) return E_INVALIDARG;
    if (params.cArgs > count) return DISP_E_BADPARAMCOUNT;
    places.assign(count, kNone);
    UINT named = 0;
    if (function.kind == INVOKE_PROPERTYPUT) {
        if (params.cNamedArgs == 0 || params.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) {
            return DISP_E_PARAMNOTFOUND;
        }
        places[count - 1] = named++;
    }
    for (; named < params.cNamedArgs; ++named) {
        const auto parameter = static_cast<UINT>(params.rgdispidNamedArgs[named]);
        if (parameter >= count || places[parameter] != kNone) return DISP_E_PARAMNOTFOUND;
        places[parameter] = named;
    }
    for (UINT parameter = 0, next = params.cArgs; next > params.cNamedArgs; ++parameter) {
        if (parameter >= count || places[parameter] != kNone) return DISP_E_BADPARAMCOUNT;
        places[parameter] = --next;
    }
    // No parameter of this library is optional.
    for (const UINT place : places) {
        if (place == kNone) return DISP_E_BADPARAMCOUNT;
    }
    return S_OK;
}

HRESULT CallThroughTable(void* instance, SHORT slot,
                         std::vector<std::unique_ptr<Argument>>& arguments) {
    std::vector<ffi_type*> types = {&ffi_type_pointer};
    std::vector<void*> values = {&instance};
    for (const auto& argument : arguments) {
        types.push_back(argument->type());
        values.push_back(argument->value());
    }
    ffi_cif call;
    if (ffi_prep_cif(&call, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()), &ffi_type_sint32,
                     types.data()) != FFI_OK) {
        return E_UNEXPECTED;
    }
    void (*const* const table)() = *static_cast<void (***)()>(instance);
    ffi_arg status = 0;
    ffi_call(&call, table[slot], &status, values.data());
    return static_cast<HRESULT>(status);
}

bool SupportsErrorInfo(void* instance, REFIID iid) {
    void* found = nullptr;
    auto* const object = static_cast<IUnknown*>(instance);
    if (FAILED(object->QueryInterface(IID_ISupportErrorInfo, &found))) return false;
    auto* const support = static_cast<ISupportErrorInfo*>(found);
    const HRESULT hr = support->InterfaceSupportsErrorInfo(iid);
    support->Release();
    return hr == S_OK;
}

// Hands the failure to the caller, with the thread's error information when it is the object's.
void FillException(void* instance, REFIID iid, HRESULT status, EXCEPINFO& exception) {
    exception = {};
    exception.scode = status;
    IErrorInfo* info = nullptr;
    if (!SupportsErrorInfo(instance, iid) || GetErrorInfo(0, &info) != S_OK) return;
    info->GetSource(&exception.bstrSource);
    info->GetDescription(&exception.bstrDescription);
    info->GetHelpFile(&exception.bstrHelpFile);
    info->GetHelpContext(&exception.dwHelpContext);
    info->Release();
}

}  // namespace

HRESULT InvokeFunction(void* instance, REFIID iid, const FunctionData& function,
                       const DISPPARAMS& params, VARIANT* result, EXCEPINFO* exception,
                       UINT* argumentInError) {
    std::vector<UINT> places;
    HRESULT hr = PlaceArguments(function, params, places);
    if (FAILED(hr)) return hr;
    std::vector<std::unique_ptr<Argument>> arguments;
    for (const UINT place : places) {
        const ParameterData& parameter = function.parameters[arguments.size()];
        arguments.push_back(std::make_unique<Argument>());
        hr = arguments.back()->Set(parameter, params.rgvarg[place]);
        if (FAILED(hr)) {
            if (argumentInError) *argumentInError = place;
            return hr;
        }
    }
    if (HasResult(function)) {
        arguments.push_back(std::make_unique<Argument>());
        hr = arguments.back()->SetResult(function.parameters.back());
        if (FAILED(hr)) return hr;
    }
    hr = CallThroughTable(instance, function.slot, arguments);
    if (FAILED(hr)) {
        if (exception) FillException(instance, iid, hr, *exception);
        return DISP_E_EXCEPTION;
    }
    if (result) {
        VariantInit(result);
        if (HasResult(function)) arguments.back()->TakeResult(*result);
    }
    return S_OK;
}

}  // namespace quorvane::platform
