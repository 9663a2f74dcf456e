// The library as a loaded module: its notifications and its path.
#include <winbase.h>
#include <winerror.h>

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <cstdlib>

#include "code_page.h"

// Programs and tests that are no component library have no entry of their own.
extern "C" __attribute__((weak)) BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID);

namespace {

// Its address stands for the module.
struct Module {
    BYTE unused;
} g_module;

HINSTANCE OwnInstance() {
    return reinterpret_cast<HINSTANCE>(&g_module);
}

char g_path[PATH_MAX];

// Keeps the absolute path of the file that this code was loaded from; empty when it can't be told.
// Done once at load, since the host may change its folder later.
void FindOwnPath() {
    Dl_info info;
    link_map* map = nullptr;
    if (!dladdr1(&g_module, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP)) return;
    // The program itself has no name in the list of loaded objects.
    const bool isProgram = map->l_name[0] == '\0';
    if (!realpath(isProgram ? "/proc/self/exe" : map->l_name, g_path)) g_path[0] = '\0';
}

__attribute__((constructor)) void Attach() {
    FindOwnPath();
    if (DllMain) DllMain(OwnInstance(), DLL_PROCESS_ATTACH, nullptr);
}

__attribute__((destructor)) void Detach() {
    if (DllMain) DllMain(OwnInstance(), DLL_PROCESS_DETACH, nullptr);
}

}  // namespace

DWORD GetModuleFileNameW(HMODULE, LPWSTR path, DWORD size) {
    const std::u16string own = quorvane::platform::FromUtf8(g_path);
    if (own.empty() || size == 0) {
        SetLastError(own.empty() ? ERROR_GEN_FAILURE : ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const auto length = static_cast<DWORD>(own.copy(path, size - 1));
    path[length] = u'\0';
    if (length == own.size()) return length;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}
