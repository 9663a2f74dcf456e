// Events of an object as calls of script functions.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <functional>
#include <string>

#include "automation/com_ptr.h"

namespace scripthost {

// Gives the script's global object.
using Globals = std::function<quorvane::ComPtr<IDispatch>()>;

// Connects the object's first connection point, whose events call the script's functions that have
// their names with the prefix in front. Stays connected as long as the object lives.
HRESULT ConnectEvents(IDispatch& object, const std::wstring& prefix, const Globals& globals);

}  // namespace scripthost
