#include "server/registry_entries.h"

#include <string>

#include "Quorvane.h"
#include "component/control_identity.h"
#include "server/resource.h"

#define WIDEN_TEXT(text) OLESTR(text)
#define TEXT_OF_NUMBER(number) #number
#define NUMBER_AS_TEXT(number) WIDEN_TEXT(TEXT_OF_NUMBER(number))

namespace quorvane {
namespace {

// In decimal, as containers read it.
WideString MiscStatus() {
    const std::string digits = std::to_string(kControlMiscStatus);
    return {digits.begin(), digits.end()};
}

WideString ProgId(const CreatableClass& named) {
    return WideString(OLESTR("Quorvane.")) + named.name;
}

WideString VersionedProgId(const CreatableClass& named) {
    return ProgId(named) + OLESTR(".1");
}

WideString ClassKey(const WideString& clsid) {
    return OLESTR("CLSID\\") + clsid;
}

void AppendControlEntries(const WideString& key, const WideString& module, RegistryEntries& out) {
    out.push_back({key + OLESTR("\\ToolboxBitmap32"), nullptr,
                   module + OLESTR(", ") + NUMBER_AS_TEXT(IDI_QUORVANE)});
    out.push_back({key + OLESTR("\\Control"), nullptr, {}});
    out.push_back({key + OLESTR("\\Insertable"), nullptr, {}});
    out.push_back({key + OLESTR("\\MiscStatus"), nullptr, OLESTR("0")});
    out.push_back({key + OLESTR("\\MiscStatus\\1"), nullptr, MiscStatus()});
    out.push_back({key + OLESTR("\\Version"), nullptr, OLESTR("1.0")});
}

}  // namespace

RegistryEntries ApplicationEntries() {
    return {
        {OLESTR("AppID\\") QUORVANE_APPID, nullptr, OLESTR("Lindbrek Quorvane")},
        {OLESTR("AppID\\Quorvane.DLL"), OLESTR("AppID"), QUORVANE_APPID},
    };
}

RegistryEntries ClassEntries(const CreatableClass& registered, const ClassPlace& place) {
    const WideString progId = ProgId(registered);
    const WideString versioned = VersionedProgId(registered);
    const WideString description =
        OLESTR("Quorvane ") + WideString(registered.name) + OLESTR(" Class");
    const WideString key = ClassKey(place.clsid);
    RegistryEntries entries{
        {versioned, nullptr, description},
        {versioned + OLESTR("\\CLSID"), nullptr, place.clsid},
        {progId, nullptr, description},
        {progId + OLESTR("\\CLSID"), nullptr, place.clsid},
        {progId + OLESTR("\\CurVer"), nullptr, versioned},
        {key, nullptr, description},
        {key, OLESTR("AppID"), QUORVANE_APPID},
        {key + OLESTR("\\ProgID"), nullptr, versioned},
        {key + OLESTR("\\VersionIndependentProgID"), nullptr, progId},
        {key + OLESTR("\\InprocServer32"), nullptr, place.module},
        {key + OLESTR("\\InprocServer32"), OLESTR("ThreadingModel"), OLESTR("Apartment")},
        {key + OLESTR("\\Programmable"), nullptr, {}},
        {key + OLESTR("\\TypeLib"), nullptr, place.library},
    };
    if (registered.isControl) AppendControlEntries(key, place.module, entries);
    return entries;
}

std::array<WideString, 3> ClassKeys(const CreatableClass& registered, const WideString& clsid) {
    return {VersionedProgId(registered), ProgId(registered), ClassKey(clsid)};
}

}  // namespace quorvane
