#include "automation/module_thread.h"

#include <windows.h>
#include <process.h>

#include <memory>
#include <new>
#include <utility>

#include "automation/module.h"

namespace quorvane {
namespace {

struct ThreadStart {
    explicit ThreadStart(std::function<void()> threadBody) : body(std::move(threadBody)) {
        const auto* const address = reinterpret_cast<LPCWSTR>(&StartModuleThread);
        if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, address, &library)) {
            library = nullptr;
        }
    }
    ~ThreadStart() {
        if (library) FreeLibrary(library);
    }
    ThreadStart(const ThreadStart&) = delete;
    ThreadStart& operator=(const ThreadStart&) = delete;

    std::function<void()> body;
    HMODULE library = nullptr;  // with a reference of its own
    ModuleReference use;
};

// Everything of the thread's own is destroyed before the call that doesn't return: the code may be
// gone behind it.
unsigned WINAPI Run(void* argument) {
    HMODULE library;
    {
        const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
        start->body();
        library = std::exchange(start->library, nullptr);
    }
    FreeLibraryAndExitThread(library, 0);
}

}  // namespace

bool StartModuleThread(std::function<void()> body) noexcept {
    try {
        auto start = std::make_unique<ThreadStart>(std::move(body));
        if (!start->library) return false;
        const auto thread = _beginthreadex(nullptr, 0, Run, start.get(), 0, nullptr);
        if (thread == 0) return false;
        (void)start.release();  // the thread's from here
        CloseHandle(reinterpret_cast<HANDLE>(thread));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

ThreadEnd::ThreadEnd() noexcept : thread_(OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId())) {}

ThreadEnd::~ThreadEnd() {
    if (thread_) CloseHandle(thread_);
}

bool ThreadEnd::WaitFor(std::chrono::milliseconds time) const noexcept {
    return !thread_ ||
           WaitForSingleObject(thread_, static_cast<DWORD>(time.count())) != WAIT_TIMEOUT;
}

}  // namespace quorvane
