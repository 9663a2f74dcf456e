// The quick way into a container, and what the container learns of the control's class.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "component/control_object.h"
#include "component/control_part.h"
#include "component/control_view.h"

namespace quorvane {

// One call in place of the dozen with which a container would connect itself to the control.
class ActivationPart final : public ControlPart<IQuickActivate, IProvideClassInfo2> {
public:
    ActivationPart(IUnknown& owner, ObjectPart& object, ViewPart& view)
        : ControlPart(owner), object_(object), view_(view) {}

    STDMETHODIMP QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    STDMETHODIMP SetContentExtent(LPSIZEL size) override;
    STDMETHODIMP GetContentExtent(LPSIZEL size) override;

    STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
    STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

private:
    // Connects a sink of events; *cookie stays 0 when that fails.
    void ConnectEvents(IUnknown& sink, DWORD* cookie);

    ObjectPart& object_;
    ViewPart& view_;
};

}  // namespace quorvane
