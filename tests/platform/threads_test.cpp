// Purpose: threads hold the library that their code is in, to their very end.
#include <windows.h>
#include <process.h>

#include <gtest/gtest.h>

#include <future>

namespace {

struct Task {
    HMODULE library = nullptr;
    std::promise<HANDLE> begun;
    std::promise<void> goOn;
    std::promise<void> ended;
};

// Goes with the thread, after its functions have been left.
struct EndNotice {
    Task* task = nullptr;
    ~EndNotice() {
        if (task) task->ended.set_value();
    }
};
thread_local EndNotice t_endNotice;

unsigned WINAPI EndWithLibrary(void* argument) {
    auto* const task = static_cast<Task*>(argument);
    t_endNotice.task = task;
    task->begun.set_value(OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()));
    task->goOn.get_future().wait();
    FreeLibraryAndExitThread(task->library, 0);
}

TEST(Threads, EndWithTheLibraryTheyHold) {
    Task task;
    ASSERT_TRUE(GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                                   reinterpret_cast<LPCWSTR>(&EndWithLibrary), &task.library));
    std::future<void> ended = task.ended.get_future();
    const uintptr_t thread = _beginthreadex(nullptr, 0, EndWithLibrary, &task, 0, nullptr);
    ASSERT_NE(thread, 0u);
    EXPECT_TRUE(CloseHandle(reinterpret_cast<HANDLE>(thread)));

    // Others see through a handle of the thread's own that it has ended, and not before.
    const HANDLE end = task.begun.get_future().get();
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(WaitForSingleObject(end, 1), WAIT_TIMEOUT);
    task.goOn.set_value();
    EXPECT_EQ(WaitForSingleObject(end, 20000), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(end));
    EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
    EXPECT_EQ(ended.wait_for(std::chrono::seconds(20)), std::future_status::ready);

    HMODULE none = task.library;
    EXPECT_FALSE(GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                                    reinterpret_cast<LPCWSTR>(&none), &none));
    EXPECT_EQ(none, nullptr);
    EXPECT_FALSE(FreeLibrary(nullptr));
}

}  // namespace
