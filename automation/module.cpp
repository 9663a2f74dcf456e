#include "automation/module.h"

#include <atomic>

namespace quorvane {
namespace {

std::atomic<long> g_references{0};
HINSTANCE g_instance = nullptr;

}  // namespace

void ModuleAddRef() {
    g_references.fetch_add(1, std::memory_order_relaxed);
}

void ModuleRelease() {
    g_references.fetch_sub(1, std::memory_order_acq_rel);
}

bool ModuleCanUnload() {
    return g_references.load(std::memory_order_acquire) == 0;
}

void ModuleAttach(HINSTANCE instance) {
    g_instance = instance;
}

HINSTANCE ModuleInstance() {
    return g_instance;
}

}  // namespace quorvane
