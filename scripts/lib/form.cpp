// A window with the control on it, as a designer shows a form: for the picture of the
// documentation.
#include <windows.h>
#include <ole2.h>

static LRESULT CALLBACK Form(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    if (message != WM_PAINT) return DefWindowProcW(window, message, first, second);
    // The grid of a designer.
    PAINTSTRUCT paint;
    const HDC surface = BeginPaint(window, &paint);
    for (int x = 8; x < 600; x += 8) {
        for (int y = 8; y < 400; y += 8) SetPixel(surface, x, y, RGB(120, 120, 120));
    }
    EndPaint(window, &paint);
    return 0;
}

static HWND Child(HWND form, const wchar_t* name, const wchar_t* text, DWORD style, RECT place) {
    HWND child =
        CreateWindowExW(0, name, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                        place.right, place.bottom, form, nullptr, nullptr, nullptr);
    SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    return child;
}

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
    OleInitialize(nullptr);
    WNDCLASSW form{};
    form.lpfnWndProc = Form;
    form.hInstance = instance;
    form.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    form.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    form.lpszClassName = L"Form";
    RegisterClassW(&form);
    const HWND window =
        CreateWindowExW(0, L"Form", L"UserForm1", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 40, 40,
                        400, 240, nullptr, nullptr, instance, nullptr);
    Child(window, L"STATIC", L"To:", 0, {24, 28, 40, 20});
    Child(window, L"EDIT", L"ann@example.org", WS_BORDER, {72, 24, 280, 24});
    Child(window, L"BUTTON", L"Send", 0, {72, 64, 96, 32});
    const HMODULE atl = LoadLibraryW(L"atl.dll");
    reinterpret_cast<BOOL(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(atl, "AtlAxWinInit")))();
    Child(window, L"AtlAxWin", L"Quorvane.SmtpMail", 0, {312, 120, 34, 34});
    ShowWindow(window, SW_SHOW);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    OleUninitialize();
    return 0;
}
