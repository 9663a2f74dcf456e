// Messages of threads, and resources.
#pragma once

#include "windef.h"

#ifdef __cplusplus

typedef struct HWND__* HWND;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;

typedef struct tagPOINT {
    LONG x;
    LONG y;
} POINT;

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

}  // extern "C"

#endif
