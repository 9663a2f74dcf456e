// The component's type library, out of the library that lies beside the tests.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <string>

// The caller releases it; null when it can't be loaded.
inline ITypeLib* LoadComponentTypeLibrary() {
    WCHAR program[1024];
    const DWORD length = GetModuleFileNameW(nullptr, program, 1024);
    const std::basic_string<WCHAR> path(program, length);
    const std::basic_string<WCHAR> file =
        path.substr(0, path.find_last_of(OLESTR("\\/")) + 1) + OLESTR("Quorvane.dll");
    ITypeLib* library = nullptr;
    return SUCCEEDED(LoadTypeLibEx(file.c_str(), REGKIND_NONE, &library)) ? library : nullptr;
}
