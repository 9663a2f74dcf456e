// Calls of functions by type information.
#pragma once

#include <oaidl.h>

#include "type_data.h"

namespace quorvane::platform {

// Calls a function of the object at `instance`, whose table of functions the data describes, as
// ITypeInfo::Invoke does. `iid`: the interface, asked for when the function fails. Throws
// std::bad_alloc before the call.
HRESULT InvokeFunction(void* instance, REFIID iid, const FunctionData& function,
                       const DISPPARAMS& params, VARIANT* result, EXCEPINFO* exception,
                       UINT* argumentInError);

}  // namespace quorvane::platform
