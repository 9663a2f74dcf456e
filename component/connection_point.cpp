#include "component/connection_point.h"

#include <olectl.h>

#include "Quorvane.h"
#include "automation/boundary.h"
#include "automation/enumerator.h"

namespace quorvane {
namespace {

using HeldPoint = ComPtr<IConnectionPoint>;

void GivePoint(const HeldPoint& held, IConnectionPoint*& item) {
    item = HeldPoint(held).Detach();
}

void GiveConnection(const Connection& held, CONNECTDATA& item) {
    item.pUnk = ComPtr<IUnknown>(held.sink).Detach();
    item.dwCookie = held.cookie;
}

using PointEnumerator = Enumerator<IEnumConnectionPoints, IConnectionPoint*, HeldPoint, GivePoint>;
using ConnectionEnumerator = Enumerator<IEnumConnections, CONNECTDATA, Connection, GiveConnection>;

}  // namespace

STDMETHODIMP EventConnectionPoint::QueryInterface(REFIID iid, void** out) {
    if (!out) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IConnectionPoint;
    *out = known ? static_cast<IConnectionPoint*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

STDMETHODIMP EventConnectionPoint::GetConnectionInterface(IID* iid) {
    if (!iid) return E_POINTER;
    *iid = DIID__ISmtpMailEvents;
    return S_OK;
}

STDMETHODIMP EventConnectionPoint::GetConnectionPointContainer(
    IConnectionPointContainer** container) {
    if (!container) return E_POINTER;
    *container = ComPtr<IConnectionPointContainer>(&container_).Detach();
    return S_OK;
}

STDMETHODIMP EventConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    return Guarded([&] { return listeners_.Advise(sink, cookie); });
}

STDMETHODIMP EventConnectionPoint::Unadvise(DWORD cookie) {
    return Guarded([&] { return listeners_.Unadvise(cookie); });
}

STDMETHODIMP EventConnectionPoint::EnumConnections(IEnumConnections** connections) {
    if (!connections) return E_POINTER;
    *connections = nullptr;
    return Guarded(
        [&] { return ConnectionEnumerator::Create(listeners_.Connections(), connections); });
}

HRESULT EnumOnlyPoint(IConnectionPoint& point, IEnumConnectionPoints** points) noexcept {
    if (!points) return E_POINTER;
    *points = nullptr;
    return Guarded([&] { return PointEnumerator::Create({HeldPoint(&point)}, points); });
}

HRESULT FindOnlyPoint(IConnectionPoint& point, REFIID wanted, REFIID iid,
                      IConnectionPoint** found) {
    if (!found) return E_POINTER;
    *found = wanted == iid ? HeldPoint(&point).Detach() : nullptr;
    return *found ? S_OK : CONNECT_E_NOCONNECTION;
}

}  // namespace quorvane
