// Basic Windows types for the native Linux build, with the SDK's names, sizes and signs.
//
// The headers of this folder stand in for the Windows SDK where there is none. They declare only
// what the product calls. Where behaviour differs from Windows, the declaration says so and why.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define EXTERN_C extern "C"
#else
#include <uchar.h>
#define EXTERN_C extern
#endif

// What client programs of the shared library link against is visible; all the rest is hidden.
#define QUORVANE_EXPORT __attribute__((visibility("default")))

// Differs from Windows: one calling convention serves all, that of the System V ABI.
#define WINAPI
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define CALLBACK

#define IN
#define OUT
#define DECLSPEC_UUID(x)
#define DECLSPEC_NOVTABLE
#define DECLSPEC_SELECTANY __attribute__((weak))

typedef unsigned char BYTE;
typedef char CHAR;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef uint16_t WORD;
typedef int INT;
typedef unsigned int UINT;
typedef int BOOL;
// 32 bits as on Windows, where long has them too; Linux's long has 64.
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef long long LONGLONG;
typedef unsigned long long ULONGLONG;
typedef float FLOAT;
typedef double DOUBLE;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef size_t SIZE_T;
// Differs from Windows: char16_t, because wchar_t has 32 bits here. Literals are u"...", which
// OLESTR writes on both systems.
typedef char16_t WCHAR;

typedef void *PVOID, *LPVOID;
typedef const void* LPCVOID;
typedef BYTE *PBYTE, *LPBYTE;
typedef CHAR *PSTR, *LPSTR;
typedef const CHAR *PCSTR, *LPCSTR, *LPCCH;
typedef WCHAR *PWSTR, *LPWSTR;
typedef const WCHAR *PCWSTR, *LPCWSTR, *LPCWCH;
typedef DWORD *PDWORD, *LPDWORD;
typedef BOOL *PBOOL, *LPBOOL;

typedef void* HANDLE;
typedef struct HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef struct HKEY__* HKEY;
typedef HKEY* PHKEY;
typedef struct HWND__* HWND;
typedef struct HDC__* HDC;
typedef struct HBITMAP__* HBITMAP;
typedef struct HBRUSH__* HBRUSH;
typedef struct HRGN__* HRGN;
typedef struct HICON__* HICON;
typedef HICON HCURSOR;
typedef struct HMENU__* HMENU;
typedef struct HACCEL__* HACCEL;
typedef struct HMETAFILE__* HMETAFILE;
typedef HANDLE HGLOBAL;
typedef void* HGDIOBJ;

typedef DWORD LCID;
typedef LONG HRESULT;
typedef LONG LSTATUS;

typedef union _LARGE_INTEGER {
    LONGLONG QuadPart;
} LARGE_INTEGER, *PLARGE_INTEGER;

typedef union _ULARGE_INTEGER {
    ULONGLONG QuadPart;
} ULARGE_INTEGER;

typedef struct tagPOINT {
    LONG x;
    LONG y;
} POINT, *LPPOINT;

typedef struct tagSIZE {
    LONG cx;
    LONG cy;
} SIZE, *LPSIZE, SIZEL, *LPSIZEL;

// What is inside begins at left and top and ends before right and bottom.
typedef struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT, *LPRECT;
typedef const RECT* LPCRECT;

typedef struct _RECTL {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECTL, *LPRECTL;
typedef const RECTL* LPCRECTL;

typedef struct _FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME, *LPFILETIME;

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)
