// The window of a control that is active in its container.
#pragma once

#include <windows.h>

#include <optional>

namespace quorvane {

// The window class exists while somebody holds one of these: the library may go and come back at
// another address, and Windows doesn't take its window classes away with it.
class WindowClassUse {
public:
    WindowClassUse();
    ~WindowClassUse();
    WindowClassUse(const WindowClassUse&) = delete;
    WindowClassUse& operator=(const WindowClassUse&) = delete;
};

class ControlWindow {
public:
    // Hears from the window, on its thread. Each call may be the end of window and listener.
    class Listener {
    public:
        virtual void Paint(HDC dc, const RECT& bounds) = 0;
        virtual void Clicked() = 0;
        virtual void FocusChanged(bool hasFocus) = 0;

    protected:
        ~Listener() = default;
    };

    explicit ControlWindow(Listener& listener) : listener_(listener) {}
    ~ControlWindow() { Destroy(); }
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;

    // Makes the window, hidden, when there is none. False when the system refuses.
    bool Create(HWND parent, const RECT& place);
    void Destroy();
    // Null when there is no window, also after the parent window has gone.
    HWND Handle() const { return window_; }

    void Show(bool visible);
    // Moves it, and shows no more of it than what is inside `clip`; both in the parent's pixels. A
    // clip that meets nothing of the place doesn't count: not every container clips.
    void Place(const RECT& place, const RECT& clip);
    void TakeFocus();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM parameter);
    friend WindowClassUse;

    // True when nothing is left to do for the message.
    bool Handle(UINT message);
    void Paint();

    Listener& listener_;
    HWND window_ = nullptr;
    std::optional<WindowClassUse> class_;
};

}  // namespace quorvane
