// One group of interfaces of the control that SmtpMail is.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace quorvane {

// Part of the object that owns it: has the owner's identity and shares its references.
template <class... Interfaces>
class ControlPart : public Interfaces... {
public:
    ControlPart(const ControlPart&) = delete;
    ControlPart& operator=(const ControlPart&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        return owner_.QueryInterface(iid, out);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }

protected:
    explicit ControlPart(IUnknown& owner) : owner_(owner) {}
    ~ControlPart() = default;

    IUnknown& owner_;
};

}  // namespace quorvane
