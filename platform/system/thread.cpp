// Threads, their end, and the library that their code is in.
#include "thread.h"

#include <windows.h>
#include <process.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "handle.h"

namespace {

// What a thread's handles are duplicates of: readable once the thread has ended. Nothing when it
// has given out no handle. A plain number, which costs threads nothing that start and end without
// it.
thread_local int t_end = -1;

// Of _beginthreadex, that haven't ended.
std::atomic<int> g_threads{0};

void AnnounceEnd() {
    if (t_end < 0) return;
    eventfd_write(t_end, 1);
    close(std::exchange(t_end, -1));
}

struct Start {
    unsigned(WINAPI* run)(void*);
    void* argument;
};

void* Run(void* start) {
    // Freed before the thread runs, because FreeLibraryAndExitThread doesn't come back.
    const Start own = *std::unique_ptr<Start>(static_cast<Start*>(start));
    own.run(own.argument);
    g_threads.fetch_sub(1);
    AnnounceEnd();
    return nullptr;
}

// A value of the thread whose destructor is dlclose itself. The C library calls it as the thread's
// last act, after all functions of this library have returned and the thread's objects are gone, so
// that the library's code may go in it.
class LibraryToClose {
public:
    LibraryToClose() {
        const auto close = reinterpret_cast<void (*)(void*)>(reinterpret_cast<void*>(&dlclose));
        made_ = pthread_key_create(&key_, close) == 0;
    }
    ~LibraryToClose() {
        if (made_) pthread_key_delete(key_);
    }
    LibraryToClose(const LibraryToClose&) = delete;
    LibraryToClose& operator=(const LibraryToClose&) = delete;

    // Without a key the library stays loaded, which is the safe way to fail.
    void AtThreadEnd(HMODULE module) {
        if (made_) pthread_setspecific(key_, module);
    }

private:
    pthread_key_t key_ = 0;
    bool made_ = false;
};

LibraryToClose g_libraryToClose;

}  // namespace

namespace quorvane::platform {

bool ThreadsRun() {
    return g_threads > 0;
}

SignalsBlocked::SignalsBlocked() {
    sigset_t signals;
    sigfillset(&signals);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS, SIGPROF}) {
        sigdelset(&signals, fault);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
}

SignalsBlocked::~SignalsBlocked() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quorvane::platform

uintptr_t _beginthreadex(void*, unsigned, unsigned(WINAPI* run)(void*), void* argument, unsigned,
                         unsigned*) {
    std::unique_ptr<Start> start(new (std::nothrow) Start{run, argument});
    pthread_attr_t detached;
    if (!start || pthread_attr_init(&detached) != 0) {
        errno = ENOMEM;
        return 0;
    }
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    g_threads.fetch_add(1);
    const int error = [&] {
        const quorvane::platform::SignalsBlocked blocked;
        return pthread_create(&thread, &detached, Run, start.get());
    }();
    pthread_attr_destroy(&detached);
    if (error != 0) {
        g_threads.fetch_sub(1);
        errno = error;
        return 0;
    }
    (void)start.release();  // the thread's own
    return reinterpret_cast<uintptr_t>(quorvane::platform::kThreadHandle);
}

BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module) {
    if (!module) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *module = nullptr;
    Dl_info info;
    link_map* map = nullptr;
    if (flags == GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS &&
        dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0) {
        // The program itself has no name in the list of loaded objects.
        const char* const name = map->l_name[0] != '\0' ? map->l_name : nullptr;
        *module = static_cast<HMODULE>(dlopen(name, RTLD_NOW | RTLD_NOLOAD));
    }
    if (!*module) SetLastError(ERROR_INVALID_PARAMETER);
    return *module != nullptr;
}

BOOL FreeLibrary(HMODULE module) {
    if (module && dlclose(module) == 0) return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

void FreeLibraryAndExitThread(HMODULE module, DWORD) {
    g_libraryToClose.AtThreadEnd(module);
    g_threads.fetch_sub(1);
    AnnounceEnd();
    pthread_exit(nullptr);
}

DWORD GetCurrentThreadId() {
    return static_cast<DWORD>(gettid());
}

HANDLE OpenThread(DWORD, BOOL, DWORD thread) {
    if (thread != GetCurrentThreadId()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (t_end < 0) t_end = eventfd(0, EFD_CLOEXEC);
    const int copy = t_end < 0 ? -1 : fcntl(t_end, F_DUPFD_CLOEXEC, 0);
    if (copy >= 0) return quorvane::platform::ToHandle(copy);
    SetLastError(ERROR_TOO_MANY_OPEN_FILES);
    return nullptr;
}

DWORD WaitForSingleObject(HANDLE thread, DWORD milliseconds) {
    pollfd end{quorvane::platform::Descriptor(thread), POLLIN, 0};
    if (end.fd < 0) return WAIT_FAILED;
    const ULONGLONG deadline = GetTickCount64() + milliseconds;
    for (;;) {
        const ULONGLONG now = GetTickCount64();
        const int ready = poll(&end, 1, now < deadline ? static_cast<int>(deadline - now) : 0);
        if (ready == 0) return WAIT_TIMEOUT;
        if (ready > 0) return end.revents & POLLNVAL ? WAIT_FAILED : WAIT_OBJECT_0;
        if (errno != EINTR) return WAIT_FAILED;
    }
}
