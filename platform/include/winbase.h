// Files, the calling thread's last error, texts of errors, threads, modules, clocks and the
// computer's name.
#pragma once

#include <stdarg.h>

#include "windef.h"

#ifdef __cplusplus

#define GENERIC_READ 0x80000000u
#define FILE_SHARE_READ 0x00000001
#define OPEN_EXISTING 3
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000
#define INVALID_FILE_ATTRIBUTES ((DWORD)-1)

typedef struct _SECURITY_ATTRIBUTES* LPSECURITY_ATTRIBUTES;
typedef struct _OVERLAPPED* LPOVERLAPPED;

extern "C" {

// The error number of the calling thread's last failed system call. Never errno: a call of the C
// library in between doesn't change it.
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD error);

#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000
#define LANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define MAKELANGID(language, sublanguage) ((WORD)(((sublanguage) << 10) | (language)))

// The system's text of an error number, its line end included. The number of units without the
// terminating NUL; 0 with the last error ERROR_MR_MID_NOT_FOUND for a number without a text, or
// ERROR_INSUFFICIENT_BUFFER.
// Differs from Windows: the texts are those of the DNS client, in English whatever the language.
DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID source, DWORD message, DWORD language,
                            LPWSTR buffer, DWORD size, va_list* arguments);

// Opens an existing file for reading: GENERIC_READ and OPEN_EXISTING. Both '\\' and '/' separate
// path names, and a drive such as C: names the root directory. INVALID_HANDLE_VALUE with the last
// error set on failure; a directory gives ERROR_ACCESS_DENIED. The share mode is kept against all
// other opens through this function, in this process and in others (ERROR_SHARING_VIOLATION).
// Differs from Windows: other accesses and dispositions give ERROR_INVALID_PARAMETER, since the
// product writes no files; programs that open the file in another way are not kept out; names are
// case-sensitive, as the file system is; what is no regular file gives ERROR_ACCESS_DENIED.
HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode,
                          LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                          HANDLE templateFile);

// Reads up to `size` bytes from the file position on; 0 bytes and success at the end of the file.
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped);
BOOL WINAPI GetFileSizeEx(HANDLE file, PLARGE_INTEGER size);
BOOL WINAPI CloseHandle(HANDLE object);

// FALSE with the last error set when there is no such file or it can't be deleted; a directory
// gives ERROR_ACCESS_DENIED. Differs from Windows: a file that is open goes too.
BOOL WINAPI DeleteFileW(LPCWSTR name);

// FILE_ATTRIBUTE_DIRECTORY or FILE_ATTRIBUTE_NORMAL; INVALID_FILE_ATTRIBUTES and the last error
// when there is no such file. Differs from Windows: there are no other attributes.
DWORD WINAPI GetFileAttributesW(LPCWSTR name);

#define SYNCHRONIZE 0x00100000
#define WAIT_OBJECT_0 0u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu

DWORD WINAPI GetCurrentThreadId();

// A handle of the calling thread for others to wait for; the caller closes it. Null and the last
// error on failure. Differs from Windows: other threads can't be opened
// (ERROR_INVALID_PARAMETER).
HANDLE WINAPI OpenThread(DWORD access, BOOL inherit, DWORD thread);

// Waits until the thread has ended (WAIT_OBJECT_0), at most that long (WAIT_TIMEOUT); WAIT_FAILED
// for what is no handle. Differs from Windows: a thread has ended when it leaves the function that
// _beginthreadex was given, or in FreeLibraryAndExitThread, its thread_local objects yet to go;
// threads that nobody started so have no such end.
DWORD WINAPI WaitForSingleObject(HANDLE thread, DWORD milliseconds);

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1

// The library's own entry, when it defines one: called with DLL_PROCESS_ATTACH when the library
// has been loaded and with DLL_PROCESS_DETACH before it goes.
// Differs from Windows: there are no thread notifications.
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

// Path of the library (or program) that the product's code is in, with '/' between its names,
// whatever module is asked for. The number of units without the terminating NUL; `size` and
// ERROR_INSUFFICIENT_BUFFER when the path had to be cut.
DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);

typedef struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;      // 1 to 12
    WORD wDayOfWeek;  // 0 is Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME, *LPSYSTEMTIME;

// UTC = local time + Bias + the bias of the time in force; minutes.
typedef struct _TIME_ZONE_INFORMATION {
    LONG Bias;
    WCHAR StandardName[32];
    SYSTEMTIME StandardDate;
    LONG StandardBias;
    WCHAR DaylightName[32];
    SYSTEMTIME DaylightDate;
    LONG DaylightBias;
} TIME_ZONE_INFORMATION, *LPTIME_ZONE_INFORMATION;

#define TIME_ZONE_ID_UNKNOWN 0
#define TIME_ZONE_ID_STANDARD 1
#define TIME_ZONE_ID_DAYLIGHT 2
#define TIME_ZONE_ID_INVALID ((DWORD)0xFFFFFFFF)

void WINAPI GetLocalTime(LPSYSTEMTIME time);

// The zone of this process (TZ, or the system's) and which of its times is in force:
// TIME_ZONE_ID_UNKNOWN for a zone without daylight time.
// Differs from Windows: names and dates stay empty, since no caller shows or computes them.
DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION zone);

// Milliseconds since the system was started.
DWORD WINAPI GetTickCount();
ULONGLONG WINAPI GetTickCount64();

#define MAX_COMPUTERNAME_LENGTH 15

// The computer's name without a domain, in capitals, 15 characters at most. *size: units of the
// buffer on entry; length without the NUL on success; the needed room when it was too small
// (ERROR_BUFFER_OVERFLOW).
BOOL WINAPI GetComputerNameW(LPWSTR name, LPDWORD size);

#define GMEM_MOVEABLE 0x0002

// Blocks of memory behind a handle, as data objects hand them out.
HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size);
LPVOID WINAPI GlobalLock(HGLOBAL block);
BOOL WINAPI GlobalUnlock(HGLOBAL block);
HGLOBAL WINAPI GlobalFree(HGLOBAL block);

}  // extern "C"

#endif
