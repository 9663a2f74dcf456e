// The control's picture.
#pragma once

#include <windows.h>

namespace quorvane {

// The library's icon, 32 pixels wide, or null when it has none. Shared: nobody destroys it.
HICON LoadControlIcon() noexcept;

// Draws the icon at the top left of the bounds or, without one, a box with the component's name.
// Nothing is drawn outside of the bounds, and the device context is as before afterwards. What a
// device can't draw is left out. Bounds are in the device context's logical units.
void DrawControl(HDC dc, const RECT& bounds, HICON icon) noexcept;

}  // namespace quorvane
