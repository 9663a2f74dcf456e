#include "smtp/host_name.h"

#include <windows.h>

namespace quorvane {
namespace {

bool IsHostNameCharacter(WCHAR c) {
    return (c >= WCHAR('A') && c <= WCHAR('Z')) || (c >= WCHAR('a') && c <= WCHAR('z')) ||
           (c >= WCHAR('0') && c <= WCHAR('9')) || c == WCHAR('.') || c == WCHAR('-');
}

}  // namespace

WideString MakeHostName(WideView name) {
    WideString host;
    for (const WCHAR c : name) {
        if (IsHostNameCharacter(c)) {
            host += c;
        }
    }
    host.erase(host.find_last_not_of(OLESTR(".-")) + 1);
    host.erase(0, host.find_first_not_of(OLESTR(".-")));
    return host.empty() ? WideString(OLESTR("EMPTY")) : host;
}

WideString LocalHostName() {
    WCHAR name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    return MakeHostName(GetComputerNameW(name, &length) ? WideView(name, length) : WideView());
}

}  // namespace quorvane
