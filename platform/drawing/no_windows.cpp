// What there is none of without a window system: windows, metafiles, other units than pixels.
#include <windows.h>

namespace {

template <class Handle>
Handle NotThere() {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return Handle{};
}

}  // namespace

WORD RegisterClassExW(const WNDCLASSEXW*) {
    return NotThere<WORD>();
}

BOOL UnregisterClassW(LPCWSTR, HINSTANCE) {
    return NotThere<BOOL>();
}

HCURSOR LoadCursorW(HINSTANCE, LPCWSTR) {
    return NotThere<HCURSOR>();
}

HWND CreateWindowExW(DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                     LPVOID) {
    return NotThere<HWND>();
}

BOOL DestroyWindow(HWND) {
    return NotThere<BOOL>();
}

LRESULT DefWindowProcW(HWND, UINT, WPARAM, LPARAM) {
    return NotThere<LRESULT>();
}

LONG_PTR GetWindowLongPtrW(HWND, int) {
    return NotThere<LONG_PTR>();
}

LONG_PTR SetWindowLongPtrW(HWND, int, LONG_PTR) {
    return NotThere<LONG_PTR>();
}

BOOL ShowWindow(HWND, int) {
    return NotThere<BOOL>();
}

BOOL SetWindowPos(HWND, HWND, int, int, int, int, UINT) {
    return NotThere<BOOL>();
}

int SetWindowRgn(HWND, HRGN, BOOL) {
    return NotThere<int>();
}

BOOL GetClientRect(HWND, LPRECT) {
    return NotThere<BOOL>();
}

HWND GetFocus() {
    return nullptr;
}

HWND SetFocus(HWND) {
    return NotThere<HWND>();
}

HDC BeginPaint(HWND, LPPAINTSTRUCT) {
    return NotThere<HDC>();
}

BOOL EndPaint(HWND, const PAINTSTRUCT*) {
    return NotThere<BOOL>();
}

HRGN CreateRectRgnIndirect(const RECT*) {
    return NotThere<HRGN>();
}

HDC CreateMetaFileW(LPCWSTR) {
    return NotThere<HDC>();
}

HMETAFILE CloseMetaFile(HDC) {
    return NotThere<HMETAFILE>();
}

int GetDeviceCaps(HDC, int index) {
    return index == TECHNOLOGY ? DT_RASDISPLAY : 0;
}

BOOL LPtoDP(HDC, LPPOINT, int) {
    return TRUE;
}

int SetMapMode(HDC, int) {
    return MM_TEXT;
}

BOOL SetWindowOrgEx(HDC, int, int, LPPOINT) {
    return TRUE;
}

BOOL SetWindowExtEx(HDC, int, int, LPSIZE) {
    return TRUE;
}

BOOL SetViewportOrgEx(HDC, int, int, LPPOINT) {
    return TRUE;
}
