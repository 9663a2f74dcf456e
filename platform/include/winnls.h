// Code pages and locales.
#pragma once

#include "winbase.h"

#ifdef __cplusplus

#define CP_ACP 0
#define CP_THREAD_ACP 3
#define CP_UTF8 65001
#define WC_NO_BEST_FIT_CHARS 0x00000400
#define WC_ERR_INVALID_CHARS 0x00000080
#define MB_PRECOMPOSED 0x00000001
#define MB_ERR_INVALID_CHARS 0x00000008

#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_USER_DEFAULT 0x0400

extern "C" {

// Convert between UTF-16 and 8-bit text. A size of -1 takes the text up to and with its NUL; an
// output size of 0 asks for the needed size. 0 and the last error on failure
// (ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_PARAMETER, ERROR_NO_UNICODE_TRANSLATION,
// ERROR_INVALID_FLAGS).
// Differs from Windows: CP_ACP and CP_THREAD_ACP are always Windows-1252; a character that it
// lacks becomes the default character ('?'), never a similar one.
QUORVANE_EXPORT int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH wide,
                                               int wideSize, LPSTR bytes, int byteSize,
                                               LPCCH defaultChar, LPBOOL usedDefaultChar);
int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH bytes, int byteSize, LPWSTR wide,
                               int wideSize);

// The calling thread's locale; a new thread has LOCALE_USER_DEFAULT.
// Differs from Windows: the locale has no influence on anything.
LCID WINAPI GetThreadLocale();
BOOL WINAPI SetThreadLocale(LCID locale);

}  // extern "C"

#endif
