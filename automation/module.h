// The loaded library: its instance, and what keeps it loaded.
#pragma once

#include <windows.h>

#include "automation/wide_string.h"

namespace quorvane {

// Counts live objects, threads and server locks. Any thread.
void ModuleAddRef();
void ModuleRelease();
// True when nothing counts; the answer of DllCanUnloadNow.
bool ModuleCanUnload();

// Remembers the instance handle under which the library's resources are found.
void ModuleAttach(HINSTANCE instance);
HINSTANCE ModuleInstance();
// Full path of the library; empty when it can't be had.
WideString ModulePath();

// Holds the library for as long as it lives.
class ModuleReference {
public:
    ModuleReference() { ModuleAddRef(); }
    ~ModuleReference() { ModuleRelease(); }
    ModuleReference(const ModuleReference&) = delete;
    ModuleReference& operator=(const ModuleReference&) = delete;
};

}  // namespace quorvane
