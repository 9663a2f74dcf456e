// A listener of SmtpMail's events, and the pumping that lets calls through to it.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <vector>

#include "Quorvane.h"
#include "automation/com_ptr.h"

namespace quorvane {

// Member and arguments of one call, in the order in which they are written.
struct Event {
    DISPID member;
    std::vector<LONG> values;

    bool operator==(const Event&) const = default;
};

inline Event StatusEvent(LONG number, LONG status) {
    return {1, {number, status}};
}

// Lives on the stack of the thread that it listens on; what is registered of it must be gone by
// then, or its apartment with it.
class Listener final : public IDispatch {
public:
    enum Kind { Sink, Function };
    // A script function answers to the number of its default member only.
    explicit Listener(Kind kind = Sink) : kind_(kind) {}
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch ||
                           (iid == DIID__ISmtpMailEvents && kind_ == Sink);
        *out = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*,
                        EXCEPINFO*, UINT*) override {
        if (kind_ == Function && member != DISPID_VALUE) return DISP_E_MEMBERNOTFOUND;
        Event event{member, {}};
        for (UINT index = parameters->cArgs; index-- > 0;) {
            const VARIANTARG& argument = parameters->rgvarg[index];
            event.values.push_back(argument.vt == VT_I4 && flags == DISPATCH_METHOD ? argument.lVal
                                                                                    : -77);
        }
        events.push_back(event);
        return reaction ? reaction(event) : S_OK;
    }

    std::vector<Event> events;
    std::function<HRESULT(const Event&)> reaction;
    std::atomic<ULONG> references{0};

private:
    const Kind kind_;
};

// Takes messages until the condition comes true; false after twenty seconds.
template <class Condition>
bool PumpUntil(Condition&& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 2, QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return true;
}

}  // namespace quorvane
