#include "tests/component/shortage/failing.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_left{-1};
std::atomic<bool> g_noThreads{false};

}  // namespace

void* operator new(std::size_t size) {
    if (g_left >= 0 && g_left-- == 0) throw std::bad_alloc();
    if (void* const block = std::malloc(size)) return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) {
    if (g_noThreads) return EAGAIN;
    const auto real =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return real(thread, attributes, start, argument);
}

namespace quorvane {

void FailAllocation(long after) {
    g_left = after;
}

void FailThreads(bool failing) {
    g_noThreads = failing;
}

}  // namespace quorvane
