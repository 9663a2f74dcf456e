// Loaded libraries and their counts.
#pragma once

#include "windef.h"

#ifdef __cplusplus

extern "C" {

#define GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS 0x4

// The library (or program) that `address` is in, kept loaded until FreeLibrary or
// FreeLibraryAndExitThread gives the handle back. FALSE with the last error ERROR_INVALID_PARAMETER
// when the address is in none. Differs from Windows: there are no other flags.
BOOL WINAPI GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module);
BOOL WINAPI FreeLibrary(HMODULE module);

// Ends the calling thread, which _beginthreadex has started, and gives the library back once
// nothing of it runs on this thread any more: a thread may be the last to hold the library that its
// code is in. Differs from Windows: the thread's functions are left as by an exception, so that
// their local objects go; none of them may be noexcept.
[[noreturn]] void WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD code);

}  // extern "C"

#endif
