// Threads, and the library that their code is in.
#include "thread.h"

#include <windows.h>
#include <process.h>

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

#include <cerrno>
#include <memory>
#include <new>

namespace {

struct Start {
    unsigned(WINAPI* run)(void*);
    void* argument;
};

void* Run(void* start) {
    // Freed before the thread runs, because FreeLibraryAndExitThread doesn't come back.
    const Start own = *std::unique_ptr<Start>(static_cast<Start*>(start));
    own.run(own.argument);
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
    const int error = pthread_create(&thread, &detached, Run, start.get());
    pthread_attr_destroy(&detached);
    if (error != 0) {
        errno = error;
        return 0;
    }
    start.release();  // the thread's own
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
    pthread_exit(nullptr);
}
