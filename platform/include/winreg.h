// The registry below HKEY_CLASSES_ROOT: class identifiers, ProgIDs and types of file extensions.
//
// What is stored survives the process: it stands in $XDG_DATA_HOME/quorvane/registry or
// ~/.local/share/quorvane/registry, which one process at a time writes. A key that names a file
// extension (.pdf) and is not stored exists when the system's MIME database knows the extension,
// and has one value, "Content Type".
#pragma once

#include "windef.h"

#ifdef __cplusplus

#define HKEY_CLASSES_ROOT ((HKEY)(ULONG_PTR)(LONG_PTR)(LONG)0x80000000)

#define KEY_READ 0x20019
#define KEY_WRITE 0x20006
#define REG_OPTION_NON_VOLATILE 0x00000000
#define REG_CREATED_NEW_KEY 1
#define REG_OPENED_EXISTING_KEY 2

#define REG_SZ 1
#define REG_EXPAND_SZ 2

typedef DWORD REGSAM;
typedef struct _SECURITY_ATTRIBUTES* LPSECURITY_ATTRIBUTES;

extern "C" {

// All return ERROR_SUCCESS or an error number; they leave the last error alone. Names of keys and
// values are compared without regard to the case of ASCII letters.
// Differs from Windows: the kinds of access asked for are not checked; ERROR_ACCESS_DENIED when the
// user has no home folder or it can't be written.
LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass,
                               DWORD options, REGSAM access, LPSECURITY_ATTRIBUTES security,
                               PHKEY result, LPDWORD disposition);
// A null or empty name means the key's default value. *size counts bytes. ERROR_MORE_DATA with
// the needed size when the buffer is too small.
LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size);
// Differs from Windows: only texts, REG_SZ and REG_EXPAND_SZ, are stored; another type gives
// ERROR_INVALID_PARAMETER.
LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size);
LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name);
// Removes the subkey with everything below it.
// Differs from Windows: the subkey must be named; keys can't be emptied.
LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey);
LSTATUS WINAPI RegCloseKey(HKEY key);

}  // extern "C"

#endif
