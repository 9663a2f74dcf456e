// SmtpMail as a control: what containers and designers ask of an object that stands on a form.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "component/control_activation.h"
#include "component/control_data.h"
#include "component/control_drawing.h"
#include "component/control_extent.h"
#include "component/control_in_place.h"
#include "component/control_object.h"
#include "component/control_persistence.h"
#include "component/control_view.h"

namespace quorvane {

// Part of the object that owns it. Costs who only sends no more than its room: a window, its class
// and everything else come with the container that asks for them.
class Control {
public:
    explicit Control(IUnknown& owner) : owner_(owner) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    // The control's answer to QueryInterface, for interfaces that the owner itself doesn't have.
    HRESULT QueryInterface(REFIID iid, void** out);

private:
    void* Find(REFIID iid);

    IUnknown& owner_;
    const HICON icon_ = LoadControlIcon();
    ControlExtent extent_{[this] {
        view_.SendViewChange();
        data_.SendDataChange();
    }};
    ViewPart view_{owner_, extent_, icon_};
    DataPart data_{owner_, extent_, icon_};
    InPlacePart inPlace_{owner_, icon_};
    ObjectPart object_{owner_, extent_, inPlace_};
    PersistencePart persistence_{owner_, extent_};
    ActivationPart activation_{owner_, object_, view_};
};

}  // namespace quorvane
