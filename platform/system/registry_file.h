// The file that keeps the registry between processes.
#pragma once

#include <functional>
#include <string>

#include "registry_tree.h"

namespace quorvane::platform {

// Calls `use` with the keys as they are stored now. Any thread; `use` must not come back here. A
// missing, unreadable or damaged file counts as an empty one.
void ReadRegistry(const std::function<void(const RegistryTree&)>& use);

// Lets `change` alter the stored keys and stores them when it returns ERROR_SUCCESS. One change at
// a time, between processes too; others see the old keys or the new ones, never a part. Returns the
// answer of `change`, or ERROR_ACCESS_DENIED when the file can't be read or written.
LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryTree&)>& change);

}  // namespace quorvane::platform
