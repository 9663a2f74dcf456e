#include "server/class_factory.h"

#include <array>
#include <memory>
#include <mutex>

#include "automation/boundary.h"
#include "automation/counted.h"
#include "server/classes.h"

namespace quorvane {
namespace {

// Lives until the library is unloaded, so its count frees nothing; each reference counts as a use
// of the library.
class ClassFactory final : public IClassFactory {
public:
    explicit ClassFactory(const CreatableClass& made) : made_(made) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *out = known ? static_cast<IClassFactory*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override {
        ModuleAddRef();
        return count_.Increment();
    }

    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = count_.Decrement();
        ModuleRelease();
        return left;
    }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return Guarded([&] { return made_.create(iid, out); });
    }

    STDMETHODIMP LockServer(BOOL lock) override {
        if (lock) {
            ModuleAddRef();
        } else {
            ModuleRelease();
        }
        return S_OK;
    }

private:
    const CreatableClass& made_;
    AtomicCount count_;
};

std::mutex g_mutex;
std::array<std::unique_ptr<ClassFactory>, kClassCount> g_factories;

ClassFactory& CachedFactory(std::size_t index) {
    const std::lock_guard lock(g_mutex);
    if (!g_factories[index]) g_factories[index] = std::make_unique<ClassFactory>(kClasses[index]);
    return *g_factories[index];
}

}  // namespace

HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    for (std::size_t index = 0; index < kClassCount; ++index) {
        if (*kClasses[index].clsid != clsid) continue;
        return Guarded([&] { return CachedFactory(index).QueryInterface(iid, out); });
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace quorvane
