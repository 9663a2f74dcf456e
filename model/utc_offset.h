// The local offset from UTC as the Date field writes it.
#pragma once

#include <windows.h>

namespace quorvane {

// The offset of the zone as a signed decimal of the form hhmm: 530 is five and a half hours east of
// Greenwich. `inForce` is what GetTimeZoneInformation returned: TIME_ZONE_ID_STANDARD and
// TIME_ZONE_ID_DAYLIGHT add their own bias, anything else doesn't.
LONG UtcOffset(const TIME_ZONE_INFORMATION& zone, DWORD inForce);

// The offset that is in force on this machine now.
LONG LocalUtcOffset();

}  // namespace quorvane
