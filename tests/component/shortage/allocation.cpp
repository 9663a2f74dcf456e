#include "tests/component/shortage/allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_left{-1};

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

namespace quorvane {

void FailAllocation(long after) {
    g_left = after;
}

}  // namespace quorvane
