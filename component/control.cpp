#include "component/control.h"

#include <algorithm>

namespace quorvane {
namespace {

// The part's interface when that is the one asked for. `Way` says through which of the part's
// interfaces one goes that several of them begin with.
template <class Interface, class Way = Interface, class Part>
void* Offer(Part& part, REFIID iid) {
    const bool asked = iid == __uuidof(Interface);
    return asked ? static_cast<Interface*>(static_cast<Way*>(&part)) : nullptr;
}

}  // namespace

HRESULT Control::QueryInterface(REFIID iid, void** out) {
    *out = Find(iid);
    if (!*out) return E_NOINTERFACE;
    owner_.AddRef();
    return S_OK;
}

void* Control::Find(REFIID iid) {
    void* const offers[] = {
        Offer<IOleObject>(object_, iid),
        Offer<IOleControl>(object_, iid),
        Offer<IOleInPlaceObject>(inPlace_, iid),
        Offer<IOleInPlaceActiveObject>(inPlace_, iid),
        Offer<IOleWindow, IOleInPlaceObject>(inPlace_, iid),
        Offer<IViewObjectEx>(view_, iid),
        Offer<IViewObject2>(view_, iid),
        Offer<IViewObject>(view_, iid),
        Offer<IDataObject>(data_, iid),
        Offer<IPersistStreamInit>(persistence_, iid),
        Offer<IPersistStorage>(persistence_, iid),
        Offer<IPersistPropertyBag>(persistence_, iid),
        Offer<IPersist, IPersistStreamInit>(persistence_, iid),
        Offer<IQuickActivate>(activation_, iid),
        Offer<IProvideClassInfo2>(activation_, iid),
        Offer<IProvideClassInfo>(activation_, iid),
    };
    const auto* const found = std::find_if(std::begin(offers), std::end(offers),
                                           [](const void* offer) { return offer != nullptr; });
    return found == std::end(offers) ? nullptr : *found;
}

}  // namespace quorvane
