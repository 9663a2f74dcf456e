// The classes that clients create.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <array>
#include <cstddef>

namespace quorvane {

struct CreatableClass {
    const CLSID* clsid;
    // ProgIDs are Quorvane.<name> and Quorvane.<name>.1, the description Quorvane <name> Class.
    const WCHAR* name;
    bool isControl;
    // Makes an object and asks it for an interface.
    HRESULT (*create)(REFIID iid, void** out);
};

inline constexpr std::size_t kClassCount = 4;

extern const std::array<CreatableClass, kClassCount> kClasses;

}  // namespace quorvane
