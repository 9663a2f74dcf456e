// Purpose: calls of objects in other apartments arrive on their thread, while that takes messages,
// in order and with the caller's arguments.
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <iterator>
#include <numeric>
#include <random>
#include <string>

#include "tests/platform/listener.h"
#include "tests/support/message_pump.h"

namespace {

using Text = std::basic_string<OLECHAR>;

VARIANT Typed(VARTYPE type) {
    VARIANT value{};
    value.vt = type;
    return value;
}

Text ToText(BSTR text) {
    return text ? Text(text, SysStringLen(text)) : Text();
}

// The test's thread is in an apartment of its own and pumps while it waits for the other thread.
class Marshalling : public testing::Test {
protected:
    Marshalling() { CoInitialize(nullptr); }
    ~Marshalling() override { CoUninitialize(); }

    void PumpWhile(std::future<void> task) {
        ASSERT_TRUE(PumpUntil(
            [&] { return task.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        task.get();
    }
    void OnOther(std::function<void()> task) { PumpWhile(other_.Start(std::move(task))); }

    const std::thread::id own_ = std::this_thread::get_id();
    PumpingThread other_;
};

TEST_F(Marshalling, TableKeepsObjectsOfTheirApartment) {
    const auto table = Table();
    Listener listener;
    DWORD cookie = 0;
    void* object = nullptr;
    EXPECT_EQ(table->RegisterInterfaceInGlobal(nullptr, IID_IDispatch, &cookie), E_INVALIDARG);
    EXPECT_EQ(table->RegisterInterfaceInGlobal(&listener, IID_IErrorInfo, &cookie), E_NOINTERFACE);
    EXPECT_EQ(table->GetInterfaceFromGlobal(12345, IID_IDispatch, &object), E_INVALIDARG);
    EXPECT_EQ(table->GetInterfaceFromGlobal(12345, IID_IDispatch, nullptr), E_INVALIDARG);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(12345), E_INVALIDARG);
    EXPECT_EQ(listener.references(), 0);

    cookie = Register(&listener);
    ASSERT_NE(cookie, 0u);
    const DWORD second = Register(&listener);
    EXPECT_NE(second, cookie);
    EXPECT_EQ(Get(cookie).get(), &listener);
    std::thread([&] {
        EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IID_IDispatch, &object),
                  CO_E_NOTINITIALIZED);
    }).join();
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), E_INVALIDARG);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(second), S_OK);
}

TEST_F(Marshalling, CallsArriveWhileTheThreadPumpsAndNotBefore) {
    Listener listener;
    const DWORD cookie = Register(&listener);
    Held<IDispatch> proxy;
    OnOther([&] { proxy = Get(cookie); });
    ASSERT_TRUE(proxy);
    EXPECT_NE(proxy.get(), &listener);

    auto calls = other_.Start([&] {
        for (DISPID member = 1; member <= 50; ++member) EXPECT_EQ(Call(*proxy, member), S_OK);
        proxy.reset();
    });
    // There is a call, but nobody has taken it.
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 20000, QS_ALLINPUT), WAIT_OBJECT_0);
    EXPECT_EQ(listener.calls, 0);
    PumpWhile(std::move(calls));
    std::vector<DISPID> expected(50);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(listener.members, expected);
    EXPECT_EQ(listener.threads, std::vector<std::thread::id>(50, own_));
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(listener.references(), 0);
}

TEST_F(Marshalling, WaitingCallersTakeCalls) {
    Listener here;
    const DWORD hereCookie = Register(&here);
    Listener there;
    Held<IDispatch> back;
    // Calls back, three deep.
    there.reaction = [&](DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*) { return Call(*back, 7); };
    DWORD thereCookie = 0;
    OnOther([&] {
        thereCookie = Register(&there);
        back = Get(hereCookie);
    });
    Held<IDispatch> forth = Get(thereCookie);
    ASSERT_TRUE(forth && back);
    here.reaction = [&](DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*) {
        return here.calls < 3 ? Call(*forth, 8) : S_FALSE;
    };
    EXPECT_EQ(Call(*forth, 6), S_FALSE);
    EXPECT_EQ(here.threads, std::vector<std::thread::id>(3, own_));
    EXPECT_EQ(there.threads, std::vector<std::thread::id>(3, other_.id()));
    OnOther([&] {
        back.reset();
        Table()->RevokeInterfaceFromGlobal(thereCookie);
    });
    forth.reset();
    Table()->RevokeInterfaceFromGlobal(hereCookie);
    EXPECT_TRUE(PumpUntil([&] { return here.references() + there.references() == 0; }));
}

TEST_F(Marshalling, ArgumentsAreCopiedThereAndBack) {
    Listener listener;
    listener.reaction = [&](DISPPARAMS& params, VARIANT* result, EXCEPINFO*, UINT*) {
        EXPECT_EQ(params.cArgs, 7u);
        EXPECT_EQ(params.cNamedArgs, 0u);
        VARIANTARG* const args = params.rgvarg;
        EXPECT_EQ(args[0].vt, VT_I4);
        EXPECT_EQ(args[0].lVal, -7);
        EXPECT_EQ(args[1].vt, VT_BSTR);
        EXPECT_EQ(ToText(args[1].bstrVal), Text(OLESTR("a\0b"), 3));
        EXPECT_EQ(args[2].vt, VT_BSTR);
        EXPECT_EQ(SysStringLen(args[2].bstrVal), 0u);
        EXPECT_EQ(args[3].vt, VT_DISPATCH);
        EXPECT_EQ(args[3].pdispVal, nullptr);
        EXPECT_EQ(args[4].vt, VT_BYREF | VT_I4);
        EXPECT_EQ(*args[4].plVal, 41);
        *args[4].plVal = 42;
        EXPECT_EQ(args[5].vt, VT_BYREF | VT_BSTR);
        SysFreeString(*args[5].pbstrVal);
        *args[5].pbstrVal = SysAllocString(OLESTR("new"));
        EXPECT_EQ(args[6].vt, VT_BYREF | VT_VARIANT);
        EXPECT_EQ(args[6].pvarVal->vt, VT_EMPTY);
        args[6].pvarVal->vt = VT_BSTR;
        args[6].pvarVal->bstrVal = SysAllocString(OLESTR("out"));
        *result = Typed(VT_R8);
        result->dblVal = 0.5;
        return S_FALSE;
    };
    const DWORD cookie = Register(&listener);
    OnOther([&] {
        const Held<IDispatch> proxy = Get(cookie);
        LONG number = 41;
        BSTR text = SysAllocString(OLESTR("old"));
        VARIANT out{}, result{};
        VARIANTARG args[] = {Typed(VT_I4),
                             Typed(VT_BSTR),
                             Typed(VT_BSTR),
                             Typed(VT_DISPATCH),
                             Typed(VT_BYREF | VT_I4),
                             Typed(VT_BYREF | VT_BSTR),
                             Typed(VT_BYREF | VT_VARIANT)};
        args[0].lVal = -7;
        args[1].bstrVal = SysAllocStringLen(OLESTR("a\0b"), 3);
        args[4].plVal = &number;
        args[5].pbstrVal = &text;
        args[6].pvarVal = &out;
        DISPPARAMS params = {args, nullptr, static_cast<UINT>(std::size(args)), 0};
        EXPECT_EQ(proxy->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result,
                                nullptr, nullptr),
                  S_FALSE);
        EXPECT_EQ(number, 42);
        EXPECT_EQ(ToText(text), OLESTR("new"));
        ASSERT_EQ(out.vt, VT_BSTR);
        EXPECT_EQ(ToText(out.bstrVal), OLESTR("out"));
        ASSERT_EQ(result.vt, VT_R8);
        EXPECT_EQ(result.dblVal, 0.5);
        SysFreeString(text);
        VariantClear(&out);
        VariantClear(&args[1]);
    });
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
}

TEST_F(Marshalling, ObjectsAmongArgumentsBecomeProxies) {
    Listener listener;
    listener.reaction = [](DISPPARAMS& params, VARIANT* result, EXCEPINFO*, UINT*) {
        *result = Typed(VT_DISPATCH);
        result->pdispVal = params.rgvarg[0].pdispVal;
        result->pdispVal->AddRef();
        return Call(*params.rgvarg[0].pdispVal, 3);
    };
    const DWORD cookie = Register(&listener);
    Listener argument;
    OnOther([&] {
        const Held<IDispatch> proxy = Get(cookie);
        VARIANTARG object = Typed(VT_DISPATCH);
        VARIANT result{};
        object.pdispVal = &argument;
        DISPPARAMS params = {&object, nullptr, 1, 0};
        EXPECT_EQ(proxy->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result,
                                nullptr, nullptr),
                  S_OK);
        // What comes home is the object itself.
        ASSERT_EQ(result.vt, VT_DISPATCH);
        EXPECT_EQ(result.pdispVal, &argument);
        VariantClear(&result);
    });
    EXPECT_EQ(argument.threads, std::vector<std::thread::id>{other_.id()});
    EXPECT_TRUE(PumpUntil([&] { return argument.references() == 0; }));
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
}

TEST_F(Marshalling, FailuresComeBackWithTheirTexts) {
    Listener listener;
    listener.reaction = [](DISPPARAMS&, VARIANT*, EXCEPINFO* exception, UINT* argumentInError) {
        exception->scode = E_ACCESSDENIED;
        exception->bstrDescription = SysAllocString(OLESTR("No."));
        *argumentInError = 3;
        return DISP_E_EXCEPTION;
    };
    const DWORD cookie = Register(&listener);
    OnOther([&] {
        const Held<IDispatch> proxy = Get(cookie);
        DISPPARAMS none{};
        EXCEPINFO exception{};
        UINT argumentInError = 0;
        EXPECT_EQ(proxy->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                                &exception, &argumentInError),
                  DISP_E_EXCEPTION);
        EXPECT_EQ(exception.scode, E_ACCESSDENIED);
        EXPECT_EQ(ToText(exception.bstrDescription), OLESTR("No."));
        EXPECT_EQ(argumentInError, 3u);
        SysFreeString(exception.bstrDescription);
        UINT count = 0;
        EXPECT_EQ(proxy->GetTypeInfoCount(&count), E_NOTIMPL);
        OLECHAR name[] = OLESTR("Name");
        LPOLESTR names[] = {name};
        DISPID id = 0;
        EXPECT_EQ(proxy->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), E_NOTIMPL);
    });
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
}

TEST_F(Marshalling, ProxiesHaveTheObjectsIdentityAndOneApartment) {
    Listener listener;
    const DWORD cookie = Register(&listener);
    DWORD second = 0;
    OnOther([&] {
        const Held<IDispatch> proxy = Get(cookie);
        const Held<IDispatch> again = Get(cookie);
        ASSERT_TRUE(proxy && again);
        void* identity = nullptr;
        void* same = nullptr;
        EXPECT_EQ(proxy->QueryInterface(IID_IUnknown, &identity), S_OK);
        EXPECT_EQ(again->QueryInterface(IID_IUnknown, &same), S_OK);
        EXPECT_EQ(identity, same);
        static_cast<IUnknown*>(identity)->Release();
        static_cast<IUnknown*>(same)->Release();
        EXPECT_EQ(proxy->QueryInterface(IID_IErrorInfo, &same), E_NOINTERFACE);
        PumpingThread third;
        third.Run([&] { EXPECT_EQ(Call(*proxy, 1), RPC_E_WRONG_THREAD); });
        // A proxy goes on as the object that it stands for.
        second = Register(proxy.get());
    });
    EXPECT_EQ(Get(second).get(), &listener);
    EXPECT_EQ(listener.calls, 0);
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(second), S_OK);
}

TEST_F(Marshalling, ObjectsGoOnTheirThread) {
    Listener listener;
    const DWORD cookie = Register(&listener);
    listener.reaction = [&](DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*) {
        return Table()->RevokeInterfaceFromGlobal(cookie);  // under its own call
    };
    OnOther([&] {
        const Held<IDispatch> proxy = Get(cookie);
        EXPECT_EQ(Call(*proxy, 1), S_OK);
        EXPECT_FALSE(Get(cookie));
        EXPECT_EQ(Call(*proxy, 2), E_INVALIDARG);
    });
    EXPECT_TRUE(PumpUntil([&] { return listener.references() == 0; }));
    EXPECT_EQ(listener.lastRelease, own_);
    EXPECT_EQ(listener.calls, 2);
}

TEST_F(Marshalling, ApartmentsThatEndLetGoOfTheirObjects) {
    Listener listener;
    Held<IDispatch> proxy;
    DWORD cookie = 0;
    {
        PumpingThread ending;
        ending.Run([&] { cookie = Register(&listener); });
        proxy = Get(cookie);
        ASSERT_TRUE(proxy);
    }
    EXPECT_EQ(listener.references(), 0);
    EXPECT_TRUE(FAILED(Call(*proxy, 1)));
    const Held<IDispatch> late = Get(cookie);
    EXPECT_TRUE(!late || FAILED(Call(*late, 1)));
    EXPECT_EQ(listener.calls, 0);
    Table()->RevokeInterfaceFromGlobal(cookie);
}

TEST_F(Marshalling, MultithreadedApartmentTakesCallsOnAnyOfItsThreads) {
    Listener listener;
    std::promise<DWORD> registered;
    std::promise<void> ending;
    std::thread multithreaded([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        const DWORD cookie = Register(&listener);
        std::thread([&] { EXPECT_EQ(Get(cookie).get(), &listener); }).join();
        registered.set_value(cookie);
        ending.get_future().get();
        CoUninitialize();
    });
    const DWORD cookie = registered.get_future().get();
    Held<IDispatch> proxy = Get(cookie);
    ASSERT_TRUE(proxy);
    EXPECT_NE(proxy.get(), &listener);
    // Calls back into this thread, which waits.
    Listener own;
    const DWORD ownCookie = Register(&own);
    listener.reaction = [&](DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*) {
        return Call(*Get(ownCookie), 2);
    };
    EXPECT_EQ(Call(*proxy, 1), S_OK);
    EXPECT_EQ(own.threads, std::vector<std::thread::id>{own_});
    ASSERT_EQ(listener.calls, 1);
    EXPECT_NE(listener.threads[0], own_);
    proxy.reset();
    Table()->RevokeInterfaceFromGlobal(ownCookie);
    Table()->RevokeInterfaceFromGlobal(cookie);
    EXPECT_TRUE(PumpUntil([&] { return listener.references() + own.references() == 0; }));
    ending.set_value();
    multithreaded.join();
}

// Every thread registers, revokes, gets and calls at once, and takes the calls of the others.
TEST(MarshallingStorm, LosesNoCallAndNoReference) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 100;
    std::atomic<DWORD> cookies[kThreads]{};
    std::atomic<int> made{0}, ready{0}, finished{0}, left{0}, taken{0};
    const auto body = [&](int own) {
        CoInitialize(nullptr);
        Listener listener;
        std::minstd_rand random(static_cast<unsigned>(own) + 1);
        cookies[own] = Register(&listener);
        ++ready;
        PumpUntil([&] { return ready == kThreads; });
        for (int round = 0; round < kRounds; ++round) {
            if (random() % 4 == 0) {
                const DWORD old = cookies[own].exchange(Register(&listener));
                EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(old), S_OK);
            }
            // It may have been revoked meanwhile.
            const Held<IDispatch> target = Get(cookies[random() % kThreads]);
            if (target && Call(*target, 1) == S_OK) ++made;
        }
        ++finished;
        EXPECT_TRUE(PumpUntil([&] { return finished == kThreads; }));
        EXPECT_EQ(Table()->RevokeInterfaceFromGlobal(cookies[own]), S_OK);
        EXPECT_TRUE(PumpUntil([&] { return listener.references() == 0; }));
        taken += listener.calls;
        ++left;
        PumpUntil([&] { return left == kThreads; });
        CoUninitialize();
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(body, i);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(taken, made);
    EXPECT_GT(made, kThreads * kRounds / 2);
}

}  // namespace
