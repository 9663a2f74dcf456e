// References to objects, good in every apartment.
#pragma once

#include <memory>
#include <utility>

#include "apartment.h"

namespace quorvane::platform {

// Keeps an object alive as long as its apartment lasts. Copied and destroyed on any thread.
class ObjectReference {
public:
    using Key = std::pair<Apartment*, ObjectTable::Number>;

    ObjectReference() = default;
    ObjectReference(const ObjectReference& other);
    ObjectReference(ObjectReference&& other) noexcept
        : home_(std::move(other.home_)), number_(other.number_), hasDispatch_(other.hasDispatch_) {}
    ObjectReference& operator=(ObjectReference other) noexcept;
    ~ObjectReference();

    // Refers to an object of the calling thread's apartment, or to the one behind a proxy.
    // CO_E_NOTINITIALIZED outside any apartment, RPC_E_DISCONNECTED when it has ended.
    static HRESULT To(IUnknown* object, ObjectReference& reference);

    // The object itself in its own apartment, a proxy in another. E_NOINTERFACE for a proxy of
    // anything but IUnknown and IDispatch.
    HRESULT Get(REFIID riid, void** object) const;

    explicit operator bool() const { return home_ != nullptr; }
    const std::shared_ptr<Apartment>& home() const { return home_; }
    Key key() const { return {home_.get(), number_}; }
    bool hasDispatch() const { return hasDispatch_; }

private:
    std::shared_ptr<Apartment> home_;
    ObjectTable::Number number_ = 0;
    bool hasDispatch_ = false;
};

}  // namespace quorvane::platform
