#include "apartment.h"

#include <objbase.h>

#include <new>
#include <optional>
#include <system_error>
#include <thread>

#include "platform/system/lasting.h"
#include "platform/system/thread.h"

namespace quorvane::platform {
namespace {

// The multithreaded apartment and the number of threads that have entered it.
std::mutex g_multithreadedMutex;
Lasting<std::shared_ptr<Apartment>> g_multithreaded;
ULONG g_multithreadedThreads = 0;

std::shared_ptr<Apartment> EnterMultithreaded() {
    const std::lock_guard lock(g_multithreadedMutex);
    auto& apartment = g_multithreaded.object;
    if (!apartment) apartment = std::make_shared<Apartment>(nullptr);
    ++g_multithreadedThreads;
    return apartment;
}

// The apartment when the calling thread was the last one in it; it has ended then.
std::shared_ptr<Apartment> LeaveMultithreaded() {
    const std::lock_guard lock(g_multithreadedMutex);
    return --g_multithreadedThreads == 0 ? std::move(g_multithreaded.object) : nullptr;
}

// The calling thread's place.
class Place {
public:
    Place() = default;
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    // A thread that ends without leaving its apartment leaves it now. Its functions have returned,
    // so that objects may have been among their variables: none is called any more.
    ~Place() {
        if (!apartment_) return;
        if (const auto ended = End()) ended->objects().Forget();
        apartment_ = nullptr;
    }

    HRESULT Enter(DWORD model) {
        if (entries_ != 0 && model_ != model) return RPC_E_CHANGED_MODE;
        if (entries_ == 0) {
            apartment_ = model == COINIT_MULTITHREADED
                             ? EnterMultithreaded()
                             : std::make_shared<Apartment>(std::make_shared<CallQueue>());
            model_ = model;
        }
        return entries_++ == 0 ? S_OK : S_FALSE;
    }

    void Leave() {
        if (entries_ == 0 || --entries_ != 0) return;
        // The objects that go may still use COM, so the thread stays in until they are gone.
        if (const auto ended = End()) ended->objects().ReleaseAll();
        apartment_ = nullptr;
    }

    const std::shared_ptr<Apartment>& apartment() const { return apartment_; }

private:
    // The apartment when it ends with this thread; its callers get their answer.
    std::shared_ptr<Apartment> End() {
        if (model_ == COINIT_MULTITHREADED) return LeaveMultithreaded();
        apartment_->calls()->Close();
        return apartment_;
    }

    std::shared_ptr<Apartment> apartment_;
    DWORD model_ = 0;
    ULONG entries_ = 0;
};

thread_local Place t_place;

}  // namespace

std::shared_ptr<Apartment> Apartment::Current() {
    if (t_place.apartment()) return t_place.apartment();
    const std::lock_guard lock(g_multithreadedMutex);
    return g_multithreaded.object;
}

HRESULT Apartment::Run(std::function<HRESULT()> work) {
    const std::shared_ptr<Apartment> callers = Current();
    const auto queue =
        callers && callers->calls() ? callers->calls() : std::make_shared<CallQueue>();
    if (!calls_) return RunOnNewThread(work, queue);
    const auto call = std::make_shared<Call>(std::move(work), queue);
    return calls_->Post(call) ? queue->WaitForOutcome(*call) : RPC_E_DISCONNECTED;
}

HRESULT Apartment::RunOnNewThread(const std::function<HRESULT()>& work,
                                  const std::shared_ptr<CallQueue>& queue) {
    // In the apartment from its first to its last act, lest that ends meanwhile.
    const auto enterAndWork = [this, &work] {
        t_place.Enter(COINIT_MULTITHREADED);
        const bool isThere = t_place.apartment().get() == this;
        const HRESULT hr = isThere ? work() : RPC_E_DISCONNECTED;
        t_place.Leave();
        return hr;
    };
    const auto call = std::make_shared<Call>(enterAndWork, queue);
    try {
        std::optional<SignalsBlocked> blocked(std::in_place);
        std::thread thread([call] { call->Run(); });
        blocked.reset();
        const HRESULT hr = queue->WaitForOutcome(*call);
        thread.join();
        return hr;
    } catch (const std::system_error&) {
        return RPC_E_OUT_OF_RESOURCES;
    }
}

void Apartment::ReleaseUnused(ObjectTable::Number number) noexcept {
    const auto release = [this, number] {
        objects_.ReleaseUnused(number);
        return S_OK;
    };
    try {
        if (Current().get() == this) {
            release();
        } else if (calls_) {
            calls_->Post(std::make_shared<Call>(release, nullptr));
        } else {
            Run(release);
        }
    } catch (const std::bad_alloc&) {
        // The object stays until the apartment ends.
    }
}

}  // namespace quorvane::platform

using quorvane::platform::t_place;

HRESULT CoInitializeEx(LPVOID reserved, DWORD model) {
    if (reserved) return E_INVALIDARG;
    try {
        return t_place.Enter(model & COINIT_APARTMENTTHREADED);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CoInitialize(LPVOID reserved) {
    return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED);
}

void CoUninitialize() {
    t_place.Leave();
}
