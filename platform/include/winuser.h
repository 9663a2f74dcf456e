// Messages of threads, resources, and windows.
#pragma once

#include "windef.h"

#ifdef __cplusplus

typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;

typedef struct tagMSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
} MSG, *LPMSG;

#define PM_REMOVE 0x0001
#define QS_ALLINPUT 0x1CFF

#define INFINITE 0xFFFFFFFFu

extern "C" {

// The calling thread's messages. PeekMessageW takes the next one, FALSE when there is none;
// DispatchMessageW carries it out; MsgWaitForMultipleObjects waits until there is one
// (WAIT_OBJECT_0) or the time in milliseconds is up (WAIT_TIMEOUT).
// Differs from Windows: the only messages are calls that other apartments make into the thread's
// own, so windows, ranges and kinds of messages are not looked at and what is found is always
// removed; handles can't be waited for (WAIT_FAILED).
QUORVANE_EXPORT BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last,
                                         UINT remove);
QUORVANE_EXPORT LRESULT WINAPI DispatchMessageW(const MSG* message);
QUORVANE_EXPORT DWORD WINAPI MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all,
                                                       DWORD time, DWORD kinds);

// Copies string resource `id`, cut to `size` - 1 units, and returns its length; 0 when there is no
// such resource. Differs from Windows: the strings are the product's own, whatever the module.
int WINAPI LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size);

#define MAKEINTRESOURCEW(id) ((LPWSTR)(ULONG_PTR)(WORD)(id))

// The picture, 32 pixels wide, of icon resource `name`, an identifier; null when there is none.
// Nobody destroys it.
// Differs from Windows: the icon is the product's own, whatever the module; null as the module
// means the system's icons, and there are none.
HICON WINAPI LoadIconW(HINSTANCE module, LPCWSTR name);

// Windows. There is no window system here: a window can't be made (null, with the last error
// ERROR_CALL_NOT_IMPLEMENTED), so nothing of the rest ever has one to work on.
typedef LRESULT(CALLBACK* WNDPROC)(HWND window, UINT message, WPARAM wide, LPARAM parameter);

typedef struct tagWNDCLASSEXW {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
    HICON hIconSm;
} WNDCLASSEXW;

typedef struct tagCREATESTRUCTW {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
} CREATESTRUCTW;

typedef struct tagPAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
} PAINTSTRUCT, *LPPAINTSTRUCT;

#define CS_VREDRAW 0x0001
#define CS_HREDRAW 0x0002
#define CS_DBLCLKS 0x0008
#define WS_CHILD 0x40000000
#define WS_CLIPSIBLINGS 0x04000000
#define WS_CLIPCHILDREN 0x02000000
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_PAINT 0x000F
#define WM_MOUSEACTIVATE 0x0021
#define WM_NCCREATE 0x0081
#define WM_NCDESTROY 0x0082
#define GWLP_USERDATA (-21)
#define SW_HIDE 0
#define SW_SHOW 5
#define SWP_NOZORDER 0x0004
#define SWP_NOACTIVATE 0x0010
#define COLOR_WINDOW 5
#define IDC_ARROW MAKEINTRESOURCEW(32512)

WORD WINAPI RegisterClassExW(const WNDCLASSEXW* windowClass);
BOOL WINAPI UnregisterClassW(LPCWSTR name, HINSTANCE module);
HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR name);
HWND WINAPI CreateWindowExW(DWORD extended, LPCWSTR windowClass, LPCWSTR title, DWORD style, int x,
                            int y, int width, int height, HWND parent, HMENU menu, HINSTANCE module,
                            LPVOID parameter);
BOOL WINAPI DestroyWindow(HWND window);
LRESULT WINAPI DefWindowProcW(HWND window, UINT message, WPARAM wide, LPARAM parameter);
LONG_PTR WINAPI GetWindowLongPtrW(HWND window, int index);
LONG_PTR WINAPI SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
BOOL WINAPI ShowWindow(HWND window, int how);
BOOL WINAPI SetWindowPos(HWND window, HWND behind, int x, int y, int width, int height, UINT flags);
int WINAPI SetWindowRgn(HWND window, HRGN region, BOOL redraw);
BOOL WINAPI GetClientRect(HWND window, LPRECT rect);
HWND WINAPI GetFocus();
HWND WINAPI SetFocus(HWND window);
HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint);
BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);

}  // extern "C"

#endif
