// Windows path names as Linux knows them, and the errors of path calls as Windows numbers them.
#pragma once

#include <winbase.h>

#include <string>

namespace quorvane::platform {

// The Linux path of a Windows path name: '\' becomes '/', a drive becomes the root directory, the
// characters become UTF-8. False for a path that can't be named so: null, or with an unpaired
// surrogate.
bool ToHostPath(LPCWSTR path, std::string& out);

// The error number for what a call on that path left in errno.
DWORD PathError(int hostError, const std::string& path);

}  // namespace quorvane::platform
