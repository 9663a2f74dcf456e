#include <winbase.h>

namespace {

thread_local DWORD t_lastError = 0;

}  // namespace

DWORD GetLastError() {
    return t_lastError;
}

void SetLastError(DWORD error) {
    t_lastError = error;
}
