#include "object_reference.h"

#include "proxy.h"

namespace quorvane::platform {

ObjectReference::ObjectReference(const ObjectReference& other)
    : home_(other.home_), number_(other.number_), hasDispatch_(other.hasDispatch_) {
    if (home_) home_->objects().AddUser(number_);
}

ObjectReference& ObjectReference::operator=(ObjectReference other) noexcept {
    std::swap(home_, other.home_);
    std::swap(number_, other.number_);
    std::swap(hasDispatch_, other.hasDispatch_);
    return *this;
}

ObjectReference::~ObjectReference() {
    if (home_ && home_->objects().RemoveUser(number_)) home_->ReleaseUnused(number_);
}

HRESULT ObjectReference::To(IUnknown* object, ObjectReference& reference) {
    ObjectReference made;
    made.home_ = Apartment::Current();
    if (!made.home_) return CO_E_NOTINITIALIZED;
    if (Proxy::TakeReference(object, reference)) return S_OK;
    const auto exported = made.home_->objects().Add(object, made.number_);
    if (!exported) return RPC_E_DISCONNECTED;
    made.hasDispatch_ = exported->dispatch != nullptr;
    reference = std::move(made);
    return S_OK;
}

HRESULT ObjectReference::Get(REFIID riid, void** object) const {
    const std::shared_ptr<Apartment> apartment = Apartment::Current();
    if (!apartment) return CO_E_NOTINITIALIZED;
    if (apartment == home_) {
        const auto exported = home_->objects().Find(number_);
        if (!exported) return RPC_E_DISCONNECTED;
        return exported->identity->QueryInterface(riid, object);
    }
    if (!home_->objects().Has(number_)) return RPC_E_DISCONNECTED;
    const Held<Proxy> proxy(apartment->proxies().Get(apartment, *this));
    return proxy->QueryInterface(riid, object);
}

}  // namespace quorvane::platform
