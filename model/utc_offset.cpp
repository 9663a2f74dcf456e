#include "model/utc_offset.h"

namespace quorvane {

LONG UtcOffset(const TIME_ZONE_INFORMATION& zone, DWORD inForce) {
    LONG bias = zone.Bias;  // minutes, UTC minus local time
    if (inForce == TIME_ZONE_ID_STANDARD) bias += zone.StandardBias;
    if (inForce == TIME_ZONE_ID_DAYLIGHT) bias += zone.DaylightBias;
    const LONG hours = bias / 60;
    const LONG minutes = bias - 60 * hours;
    return -(100 * hours + minutes);
}

LONG LocalUtcOffset() {
    TIME_ZONE_INFORMATION zone{};
    const DWORD inForce = GetTimeZoneInformation(&zone);
    return UtcOffset(zone, inForce);
}

}  // namespace quorvane
