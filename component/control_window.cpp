#include "component/control_window.h"

#include <ole2.h>

#include <algorithm>
#include <mutex>
#include <utility>

#include "automation/module.h"

namespace quorvane {
namespace {

constexpr LPCOLESTR kClassName = OLESTR("QuorvaneSmtpMail");

std::mutex g_classLock;
int g_classUses = 0;

// The part of `place` inside `clip`, in pixels from the corner of `place`.
RECT VisiblePart(const RECT& place, const RECT& clip) {
    return {std::max(place.left, clip.left) - place.left, std::max(place.top, clip.top) - place.top,
            std::min(place.right, clip.right) - place.left,
            std::min(place.bottom, clip.bottom) - place.top};
}

}  // namespace

WindowClassUse::WindowClassUse() {
    const std::lock_guard lock(g_classLock);
    if (g_classUses++ > 0) return;
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
    windowClass.lpfnWndProc = ControlWindow::Procedure;
    windowClass.hInstance = ModuleInstance();
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszClassName = kClassName;
    RegisterClassExW(&windowClass);  // without it no window is made, which its maker reports
}

WindowClassUse::~WindowClassUse() {
    const std::lock_guard lock(g_classLock);
    if (--g_classUses == 0) UnregisterClassW(kClassName, ModuleInstance());
}

bool ControlWindow::Create(HWND parent, const RECT& place) {
    if (window_) return true;
    if (!class_) class_.emplace();
    CreateWindowExW(0, kClassName, nullptr, WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN,
                    place.left, place.top, place.right - place.left, place.bottom - place.top,
                    parent, nullptr, ModuleInstance(), this);
    return window_ != nullptr;
}

void ControlWindow::Destroy() {
    // It hears no more of what happens on the way.
    if (const HWND window = std::exchange(window_, nullptr)) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        DestroyWindow(window);
    }
    class_.reset();
}

void ControlWindow::Show(bool visible) {
    if (window_) ShowWindow(window_, visible ? SW_SHOW : SW_HIDE);
}

void ControlWindow::Place(const RECT& place, const RECT& clip) {
    if (!window_) return;
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const RECT visible = VisiblePart(place, clip);
    const bool meets = visible.left < visible.right && visible.top < visible.bottom;
    const bool whole =
        visible.right - visible.left == width && visible.bottom - visible.top == height;
    SetWindowRgn(window_, meets && !whole ? CreateRectRgnIndirect(&visible) : nullptr, TRUE);
    SetWindowPos(window_, nullptr, place.left, place.top, width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void ControlWindow::TakeFocus() {
    if (window_ && GetFocus() != window_) SetFocus(window_);
}

LRESULT CALLBACK ControlWindow::Procedure(HWND window, UINT message, WPARAM wide,
                                          LPARAM parameter) {
    if (message == WM_NCCREATE) {
        const auto* made = reinterpret_cast<const CREATESTRUCTW*>(parameter);
        static_cast<ControlWindow*>(made->lpCreateParams)->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made->lpCreateParams));
    }
    auto* const self = reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && self->Handle(message)) return 0;
    return DefWindowProcW(window, message, wide, parameter);
}

bool ControlWindow::Handle(UINT message) {
    switch (message) {
        case WM_PAINT:
            Paint();
            return true;
        case WM_MOUSEACTIVATE:
            listener_.Clicked();
            return false;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            listener_.FocusChanged(message == WM_SETFOCUS);
            return false;
        case WM_NCDESTROY:
            window_ = nullptr;
            return false;
        default:
            return false;
    }
}

void ControlWindow::Paint() {
    PAINTSTRUCT paint;
    RECT bounds;
    if (!BeginPaint(window_, &paint)) return;
    if (GetClientRect(window_, &bounds)) listener_.Paint(paint.hdc, bounds);
    EndPaint(window_, &paint);
}

}  // namespace quorvane
