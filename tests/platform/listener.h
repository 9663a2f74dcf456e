// An object that notes how it is called, and the way to it from other apartments.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "tests/platform/counted_object.h"

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Held = std::unique_ptr<Interface, Releaser>;

class Listener : public CountedObject {
public:
    // Whoever refers to it then would call into nothing.
    ~Listener() override { EXPECT_EQ(references(), 0); }

    using Reaction = std::function<HRESULT(DISPPARAMS&, VARIANT*, EXCEPINFO*, UINT*)>;

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT* result,
                        EXCEPINFO* exception, UINT* argumentInError) override {
        members.push_back(member);
        threads.push_back(std::this_thread::get_id());
        ++calls;
        return reaction ? reaction(*params, result, exception, argumentInError) : S_OK;
    }
    STDMETHODIMP_(ULONG) Release() override {
        if (references() == 1) lastRelease = std::this_thread::get_id();
        return CountedObject::Release();
    }

    Reaction reaction;
    std::atomic<int> calls{0};
    // Read when nobody calls.
    std::vector<DISPID> members;
    std::vector<std::thread::id> threads;
    std::thread::id lastRelease;
};

inline Held<IGlobalInterfaceTable> Table() {
    void* table = nullptr;
    CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                     IID_IGlobalInterfaceTable, &table);
    return Held<IGlobalInterfaceTable>(static_cast<IGlobalInterfaceTable*>(table));
}

// 0 on failure.
inline DWORD Register(IUnknown* object) {
    DWORD cookie = 0;
    Table()->RegisterInterfaceInGlobal(object, IID_IDispatch, &cookie);
    return cookie;
}

// Null when there is none.
inline Held<IDispatch> Get(DWORD cookie) {
    void* object = nullptr;
    const HRESULT hr = Table()->GetInterfaceFromGlobal(cookie, IID_IDispatch, &object);
    return Held<IDispatch>(SUCCEEDED(hr) ? static_cast<IDispatch*>(object) : nullptr);
}

inline HRESULT Call(IDispatch& object, DISPID member) {
    DISPPARAMS none{};
    return object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                         nullptr, nullptr);
}
