// The connection point of SmtpMail's events.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "component/event_proxy.h"

namespace quorvane {

// Part of its container: it has an identity of its own but shares the container's references.
class EventConnectionPoint final : public IConnectionPoint {
public:
    EventConnectionPoint(IConnectionPointContainer& container, CProxy_ISmtpMailEvents& listeners)
        : container_(container), listeners_(listeners) {}
    EventConnectionPoint(const EventConnectionPoint&) = delete;
    EventConnectionPoint& operator=(const EventConnectionPoint&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override { return container_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return container_.Release(); }
    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

private:
    IConnectionPointContainer& container_;
    CProxy_ISmtpMailEvents& listeners_;
};

// What the container's methods answer when the point is the only one.
HRESULT EnumOnlyPoint(IConnectionPoint& point, IEnumConnectionPoints** points) noexcept;
HRESULT FindOnlyPoint(IConnectionPoint& point, REFIID wanted, REFIID iid, IConnectionPoint** found);

}  // namespace quorvane
