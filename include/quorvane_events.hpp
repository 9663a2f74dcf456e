// The events of queued messages for C++ programs. Header-only; see quorvane.hpp.
//
//     const qv::EventListener listener(mailer, onStatus, onProgress);
//     mailer.Queue(message);
//     while (mailer.QueueSize() > 0) qv::TakeMessages(std::chrono::milliseconds(50));
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <ole2.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <utility>

#include "quorvane.hpp"

namespace quorvane::client {

// Waits that long, a day at most, for calls from other threads to objects of this one, events among
// them, and lets them in. For programs without a message loop; one that has windows goes on with
// its own loop, which does the same, instead.
inline void TakeMessages(std::chrono::milliseconds time) {
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24);
    const auto end = std::chrono::steady_clock::now() + (time < kLongest ? time : kLongest);
    do {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(left.count()), QS_ALLINPUT);
    } while (std::chrono::steady_clock::now() < end);
}

using StatusFunction = std::function<void(LONG messageNumber, MailStatus newStatus)>;
using ProgressFunction = std::function<void(LONG messageNumber, LONG bytesSent, LONG bytesTotal)>;

namespace detail {

// The sink. It may outlive the listener, whose functions it doesn't call then.
class Sink final : public IDispatch {
public:
    Sink(StatusFunction onStatus, ProgressFunction onProgress)
        : onStatus_(std::move(onStatus)), onProgress_(std::move(onProgress)) {}

    void Forget() { onStatus_ = nullptr, onProgress_ = nullptr; }

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) ||
                           iid == __uuidof(_ISmtpMailEvents);
        if (!out) return E_POINTER;
        *out = known ? static_cast<IDispatch*>(this) : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    // The arguments come last one first. The function is a copy: it may end its own listener.
    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* with, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        const VARIANTARG* values = with->rgvarg;
        try {
            if (event == 1 && with->cArgs == 2 && onStatus_) {
                const StatusFunction onStatus = onStatus_;
                onStatus(values[1].lVal, static_cast<MailStatus>(values[0].lVal));
            } else if (event == 2 && with->cArgs == 3 && onProgress_) {
                const ProgressFunction onProgress = onProgress_;
                onProgress(values[2].lVal, values[1].lVal, values[0].lVal);
            }
            return S_OK;
        } catch (...) {
            return E_FAIL;
        }
    }

private:
    ~Sink() = default;

    StatusFunction onStatus_;
    ProgressFunction onProgress_;
    std::atomic<ULONG> references_{0};
};

}  // namespace detail

// Calls the functions for each event of the object as long as it lives, on the thread that made
// it, while that takes messages. What they throw is swallowed.
class EventListener {
public:
    EventListener(const Mailer& mailer, StatusFunction onStatus, ProgressFunction onProgress)
        : sink_(new detail::Sink(std::move(onStatus), std::move(onProgress))) {
        const auto container = mailer.com().As<IConnectionPointContainer>();
        Check(container->FindConnectionPoint(__uuidof(_ISmtpMailEvents), point_.Put()));
        Check(point_->Advise(sink_, &cookie_));
    }
    ~EventListener() {
        point_->Unadvise(cookie_);
        sink_->Forget();
    }
    EventListener(const EventListener&) = delete;
    EventListener& operator=(const EventListener&) = delete;

private:
    ComPtr<detail::Sink> sink_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

}  // namespace quorvane::client
