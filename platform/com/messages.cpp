// Messages of threads: the calls of other apartments that wait for them.
#include <windows.h>

#include "apartment.h"

using quorvane::platform::Apartment;
using quorvane::platform::CallQueue;

namespace {

// What Windows' COM posts to the window of an apartment.
constexpr UINT kCallMessage = 0x400;

// The calls for the calling thread; null when it has no apartment of its own.
std::shared_ptr<CallQueue> OwnCalls() {
    const std::shared_ptr<Apartment> apartment = Apartment::Current();
    return apartment ? apartment->calls() : nullptr;
}

}  // namespace

BOOL PeekMessageW(LPMSG message, HWND, UINT, UINT, UINT) {
    const std::shared_ptr<CallQueue> calls = OwnCalls();
    const LPARAM number = calls ? calls->Take() : 0;
    if (number == 0) return FALSE;
    *message = {reinterpret_cast<HWND>(calls.get()), kCallMessage, 0, number, GetTickCount(), {}};
    return TRUE;
}

LRESULT DispatchMessageW(const MSG* message) {
    const std::shared_ptr<CallQueue> calls = OwnCalls();
    if (calls && reinterpret_cast<HWND>(calls.get()) == message->hwnd) {
        calls->Dispatch(message->lParam);
    }
    return 0;
}

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE*, BOOL, DWORD time, DWORD) {
    if (count != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    std::shared_ptr<CallQueue> calls = OwnCalls();
    // Nobody calls a thread without an apartment of its own.
    if (!calls) calls = std::make_shared<CallQueue>();
    return calls->WaitForCall(time) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}
