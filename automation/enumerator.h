// The enumerators of COM, over a list that is fixed when they are made.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "automation/boundary.h"
#include "automation/counted.h"

namespace quorvane {

// Interface is an IEnum... of Items. A copy of each item is Held; Give(const Held&, Item&) fills in
// the caller's own, references included, and must not fail.
template <class Interface, class Item, class Held, void (*Give)(const Held&, Item&)>
class Enumerator final : public Counted<AtomicCount, Interface> {
public:
    using List = std::shared_ptr<const std::vector<Held>>;

    // Makes an enumerator at the list's beginning. E_POINTER or E_OUTOFMEMORY.
    static HRESULT Create(std::vector<Held> items, Interface** out) noexcept {
        if (!out) return E_POINTER;
        *out = nullptr;
        return Guarded([&] {
            *out = New(std::make_shared<const std::vector<Held>>(std::move(items)), 0);
            return S_OK;
        });
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(Interface);
        *out = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        this->AddRef();
        return S_OK;
    }

    STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
        if (!items || (count != 1 && !fetched)) return E_POINTER;
        const ULONG given = std::min(count, Left());
        for (ULONG index = 0; index < given; ++index) Give((*list_)[next_++], items[index]);
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }

    STDMETHODIMP Skip(ULONG count) override {
        const ULONG skipped = std::min(count, Left());
        next_ += skipped;
        return skipped == count ? S_OK : S_FALSE;
    }

    STDMETHODIMP Reset() override {
        next_ = 0;
        return S_OK;
    }

    STDMETHODIMP Clone(Interface** out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        return Guarded([&] {
            *out = New(list_, next_);
            return S_OK;
        });
    }

private:
    Enumerator(List list, std::size_t next) : list_(std::move(list)), next_(next) {}

    static Interface* New(List list, std::size_t next) {
        Interface* const enumerator = new Enumerator(std::move(list), next);
        enumerator->AddRef();
        return enumerator;
    }

    ULONG Left() const { return static_cast<ULONG>(list_->size() - next_); }

    const List list_;
    std::size_t next_;
};

}  // namespace quorvane
