#include "component/event_proxy.h"

#include <oaidl.h>
#include <olectl.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "Quorvane.h"
#include "automation/boundary.h"
#include "component/event_forwarder.h"

namespace quorvane {
namespace {

constexpr DISPID kStatusChange = 1;
constexpr DISPID kProgress = 2;
constexpr std::size_t kMaxArguments = 3;
constexpr std::size_t kFirstSlots = 4;

HRESULT Invoke(IDispatch& listener, DISPID id, std::span<const LONG> values) {
    std::array<VARIANTARG, kMaxArguments> arguments;  // the last one first
    const UINT count = static_cast<UINT>(values.size());
    for (UINT index = 0; index < count; ++index) {
        VariantInit(&arguments[index]);
        arguments[index].vt = VT_I4;
        arguments[index].lVal = values[count - 1 - index];
    }
    DISPPARAMS parameters{arguments.data(), nullptr, count, 0};
    return listener.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                           nullptr, nullptr);
}

}  // namespace

CProxy_ISmtpMailEvents::CProxy_ISmtpMailEvents() {
    CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                     IID_IGlobalInterfaceTable, table_.ReceiveVoid());
}

HRESULT CProxy_ISmtpMailEvents::Advise(IUnknown* sink, DWORD* cookie) {
    if (cookie) *cookie = 0;
    if (!sink || !cookie) return E_POINTER;
    ComPtr<IDispatch> events;
    if (FAILED(sink->QueryInterface(DIID__ISmtpMailEvents, events.ReceiveVoid())) || !events) {
        return CONNECT_E_CANNOTCONNECT;
    }
    DWORD registration = 0;
    const HRESULT hr = Guarded([&] {
        ComPtr<IDispatch> general;
        sink->QueryInterface(IID_IDispatch, general.ReceiveVoid());
        if (general.Get() != events.Get()) events = ForwardEvents(events);
        return Register(events.Get(), registration);
    });
    if (FAILED(hr)) return hr;
    if (TakeSlot(registration, cookie)) return S_OK;
    Revoke(registration);
    return CONNECT_E_ADVISELIMIT;
}

HRESULT CProxy_ISmtpMailEvents::Unadvise(DWORD cookie) {
    DWORD registration = 0;
    {
        const std::lock_guard lock(mutex_);
        if (cookie == 0 || cookie > slots_.size()) return CONNECT_E_NOCONNECTION;
        registration = std::exchange(slots_[cookie - 1], 0);
    }
    if (registration == 0) return CONNECT_E_NOCONNECTION;
    Revoke(registration);
    return S_OK;
}

std::vector<Connection> CProxy_ISmtpMailEvents::Connections() {
    std::vector<Connection> connections;
    std::size_t slots = 0;
    for (std::size_t index = 0; index == 0 || index < slots; ++index) {
        const DWORD registration = Slot(index, slots);
        Connection connection{{}, static_cast<DWORD>(index + 1)};
        if (registration != 0 && SUCCEEDED(table_->GetInterfaceFromGlobal(
                                     registration, IID_IUnknown, connection.sink.ReceiveVoid()))) {
            connections.push_back(std::move(connection));
        }
    }
    return connections;
}

void CProxy_ISmtpMailEvents::FireStatusChange(LONG messageNumber, LONG newStatus) {
    Fire(kStatusChange, std::array{messageNumber, newStatus}, m_statusHandlerCookie);
}

void CProxy_ISmtpMailEvents::FireProgress(LONG messageNumber, LONG bytesSent, LONG bytesTotal) {
    Fire(kProgress, std::array{messageNumber, bytesSent, bytesTotal}, m_progressHandlerCookie);
}

void CProxy_ISmtpMailEvents::RevokeHandlers() {
    for (DWORD* const member : {&m_statusHandlerCookie, &m_progressHandlerCookie}) {
        std::unique_lock lock(mutex_);
        const DWORD registration = std::exchange(*member, 0);
        lock.unlock();
        Revoke(registration);
    }
}

void CProxy_ISmtpMailEvents::RevokeSinks() {
    std::unique_lock lock(mutex_);
    const std::vector<DWORD> registrations = std::exchange(slots_, {});
    lock.unlock();
    std::for_each(registrations.begin(), registrations.end(),
                  [this](DWORD registration) { Revoke(registration); });
}

// As IDispatch: it is what the calls go through, and it can be marshalled without the type library.
HRESULT CProxy_ISmtpMailEvents::Register(IUnknown* object, DWORD& registration) {
    if (!table_) return E_POINTER;
    return table_->RegisterInterfaceInGlobal(object, IID_IDispatch, &registration);
}

void CProxy_ISmtpMailEvents::Revoke(DWORD registration) {
    if (registration != 0) table_->RevokeInterfaceFromGlobal(registration);
}

bool CProxy_ISmtpMailEvents::TakeSlot(DWORD registration, DWORD* cookie) {
    const std::lock_guard lock(mutex_);
    auto slot = std::find(slots_.begin(), slots_.end(), 0u);
    if (slot == slots_.end()) {
        const std::size_t used = slots_.size();
        try {
            slots_.resize(std::max(kFirstSlots, used * 2));
        } catch (const std::bad_alloc&) {
            return false;
        }
        slot = slots_.begin() + static_cast<std::ptrdiff_t>(used);
    }
    *slot = registration;
    *cookie = static_cast<DWORD>(slot - slots_.begin()) + 1;
    return true;
}

// The registration in a slot, and how many slots there are now.
DWORD CProxy_ISmtpMailEvents::Slot(std::size_t index, std::size_t& slots) {
    const std::lock_guard lock(mutex_);
    slots = slots_.size();
    return index < slots ? slots_[index] : 0;
}

HRESULT CProxy_ISmtpMailEvents::PutHandler(DWORD& member, const VARIANT& handler) {
    if (handler.vt != VT_DISPATCH) return E_INVALIDARG;
    std::unique_lock lock(mutex_);
    const DWORD previous = std::exchange(member, 0);
    lock.unlock();
    Revoke(previous);
    DWORD registration = 0;
    const HRESULT hr = Register(handler.pdispVal, registration);
    if (FAILED(hr)) return hr;
    lock.lock();
    // Of two puts at a time the later one stays.
    const DWORD other = std::exchange(member, registration);
    lock.unlock();
    Revoke(other);
    return hr;
}

void CProxy_ISmtpMailEvents::Fire(DISPID id, std::span<const LONG> values, const DWORD& handler) {
    std::size_t slots = 0;
    for (std::size_t index = 0; index == 0 || index < slots; ++index) {
        Call(Slot(index, slots), id, values);
    }
    std::unique_lock lock(mutex_);
    const DWORD registration = handler;
    lock.unlock();
    // A script function answers to the number of its default member only.
    if (Call(registration, id, values) == DISP_E_MEMBERNOTFOUND) {
        Call(registration, DISPID_VALUE, values);
    }
}

// What the listener answers; a failure when it is gone.
HRESULT CProxy_ISmtpMailEvents::Call(DWORD registration, DISPID id, std::span<const LONG> values) {
    if (registration == 0) return S_FALSE;
    return Guarded([&] {
        ComPtr<IDispatch> listener;
        const HRESULT hr =
            table_->GetInterfaceFromGlobal(registration, IID_IDispatch, listener.ReceiveVoid());
        if (FAILED(hr) || !listener) return E_FAIL;
        return Invoke(*listener.Get(), id, values);
    });
}

}  // namespace quorvane
