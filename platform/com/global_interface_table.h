// The process's table of interface pointers for all apartments.
#pragma once

#include <objidl.h>

namespace quorvane::platform {

HRESULT GetGlobalInterfaceTable(REFIID riid, void** table);

}  // namespace quorvane::platform
