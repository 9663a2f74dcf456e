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

WideString ModulePath() {
    constexpr std::size_t kLongestPath = 0x8000;
    WideString path(MAX_PATH, WCHAR(0));
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(ModuleInstance(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        if (path.size() >= kLongestPath) return {};
        path.resize(path.size() * 2);
    }
}

}  // namespace quorvane
