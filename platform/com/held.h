// Owner of one reference of an interface pointer.
#pragma once

#include <unknwn.h>

#include <memory>

namespace quorvane::platform {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using Held = std::unique_ptr<Interface, Releaser>;

// The object's interface; null when it has none of that kind.
template <class Interface>
Held<Interface> Query(IUnknown* object) {
    void* found = nullptr;
    if (FAILED(object->QueryInterface(__uuidof(Interface), &found))) return nullptr;
    return Held<Interface>(static_cast<Interface*>(found));
}

}  // namespace quorvane::platform
