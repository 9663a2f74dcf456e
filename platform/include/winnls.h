// Code pages, dates and times as text.
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

#define LANG_ENGLISH 0x09
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_ENGLISH_US 0x01
#define SORT_DEFAULT 0x0
#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_USER_DEFAULT 0x0400

extern "C" {

// Convert between UTF-16 and 8-bit text. A size of -1 takes the text up to and with its NUL; an
// output size of 0 asks for the needed size. 0 and the last error on failure
// (ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_PARAMETER, ERROR_NO_UNICODE_TRANSLATION,
// ERROR_INVALID_FLAGS).
// Differs from Windows: CP_ACP and CP_THREAD_ACP are always Windows-1252; a character that it
// lacks becomes the default character ('?'), never a similar one.
int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH wide, int wideSize, LPSTR bytes,
                               int byteSize, LPCCH defaultChar, LPBOOL usedDefaultChar);
int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH bytes, int byteSize, LPWSTR wide,
                               int wideSize);

// Write a date by the pictures d dd ddd dddd M MM MMM MMMM y yy yyyy, a time by h hh H HH m mm s ss
// t tt, with text in single quotes; a null time means now. The number of units with the NUL; a
// size of 0 asks for it.
// Differs from Windows: names are English whatever the locale; a picture must be given.
int WINAPI GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR format,
                          LPWSTR text, int size);
int WINAPI GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR format,
                          LPWSTR text, int size);

// The calling thread's locale; a new thread has LOCALE_USER_DEFAULT.
// Differs from Windows: the locale has no influence on anything.
LCID WINAPI GetThreadLocale();
BOOL WINAPI SetThreadLocale(LCID locale);

}  // extern "C"

#endif
