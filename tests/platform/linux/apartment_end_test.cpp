// Purpose: nobody waits for an apartment that ends, and no object is called once its thread has
// left. Under Windows' own COM some of these calls would wait for ever.
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include "tests/platform/listener.h"
#include "tests/support/message_pump.h"

namespace {

// Enters an apartment for as long as it lives.
struct Entered {
    Entered() { CoInitialize(nullptr); }
    ~Entered() { CoUninitialize(); }
};

// Calls an object of the test's thread, which then has a message for it, from another thread.
std::future<HRESULT> CallFromElsewhere(IUnknown* object, DWORD& cookie) {
    cookie = Register(object);
    auto outcome = std::async(std::launch::async, [cookie] {
        const Entered entered;
        const Held<IDispatch> proxy = Get(cookie);
        return proxy ? Call(*proxy, 1) : E_FAIL;
    });
    EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 20000, QS_ALLINPUT), WAIT_OBJECT_0);
    return outcome;
}

TEST(ApartmentEnd, GivesWaitingCallersTheirAnswer) {
    for (const bool isTaken : {false, true}) {
        SCOPED_TRACE(isTaken);
        Listener listener;
        DWORD cookie = 0;
        CoInitialize(nullptr);
        auto outcome = CallFromElsewhere(&listener, cookie);
        MSG message;
        if (isTaken) {
            EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
        }
        CoUninitialize();
        EXPECT_EQ(listener.references(), 0);
        EXPECT_EQ(outcome.get(), RPC_E_DISCONNECTED);
        EXPECT_EQ(listener.calls, 0);

        const Entered again;
        if (isTaken) DispatchMessageW(&message);
        void* object = nullptr;
        EXPECT_EQ(Table()->GetInterfaceFromGlobal(cookie, IID_IDispatch, &object),
                  RPC_E_DISCONNECTED);
        EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
        EXPECT_EQ(listener.calls, 0);
    }
}

TEST(ApartmentEnd, UnderACallLetsThatCallEnd) {
    Listener listener;
    listener.reaction = [&](DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*) {
        CoUninitialize();
        EXPECT_EQ(listener.references(), 2);  // those of the call under way
        return S_FALSE;
    };
    DWORD cookie = 0;
    CoInitialize(nullptr);
    auto outcome = CallFromElsewhere(&listener, cookie);
    PumpUntil([&] { return listener.calls == 1; });
    EXPECT_EQ(outcome.get(), S_FALSE);
    EXPECT_EQ(listener.references(), 0);
    const Entered again;
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
}

// The objects may have been variables of its functions.
TEST(ApartmentEnd, WithItsThreadCallsNoObject) {
    const Entered entered;
    auto* const listener = new Listener;
    DWORD cookie = 0;
    std::future<HRESULT> outcome;
    std::thread([&] {
        CoInitialize(nullptr);
        outcome = CallFromElsewhere(listener, cookie);
    }).join();
    EXPECT_EQ(outcome.get(), RPC_E_DISCONNECTED);
    EXPECT_EQ(listener->references(), 2);
    EXPECT_EQ(listener->calls, 0);
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
    listener->Release();
    listener->Release();
    delete listener;
}

TEST(ApartmentEnd, RacesWithCallers) {
    constexpr int kApartments = 30;
    const Entered entered;
    std::atomic<DWORD> cookie{0};
    std::atomic<bool> ending{false};
    std::atomic<int> made{0}, taken{0};
    const auto call = [&] {
        const Entered callers;
        while (!ending) {
            const Held<IDispatch> proxy = Get(cookie);
            const HRESULT hr = proxy ? Call(*proxy, 1) : E_INVALIDARG;
            if (hr == S_OK) ++made;
            if (proxy && FAILED(hr)) {
                EXPECT_EQ(hr, RPC_E_DISCONNECTED);
            }
        }
    };
    std::thread callers[] = {std::thread(call), std::thread(call)};
    for (int i = 0; i < kApartments; ++i) {
        Listener listener;
        std::thread([&] {
            const Entered own;
            cookie = Register(&listener);
            PumpUntil([&] { return listener.calls > i; });
        }).join();
        EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
        taken += listener.calls;
    }
    ending = true;
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(made, taken);
}

}  // namespace
