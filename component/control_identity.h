// What the control says of itself to containers.
#pragma once

#include <windows.h>
#include <ole2.h>

namespace quorvane {

// How it is called in menus and titles.
inline constexpr LPCOLESTR kControlUserType = OLESTR("Quorvane SmtpMail Class");

// Drawn again when its size changes, nothing to link to inside, several active at a time, active
// when visible, invisible when the form runs, wants its site before anything else.
inline constexpr DWORD kControlMiscStatus = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE |
                                            OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE |
                                            OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST;
static_assert(kControlMiscStatus == 0x20591, "registered under this number");

}  // namespace quorvane
