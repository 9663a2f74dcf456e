#include "component/control_drawing.h"

#include <ole2.h>

#include "automation/module.h"
#include "automation/wide_string.h"
#include "component/resource.h"

namespace quorvane {
namespace {

constexpr WideView kName = OLESTR("Quorvane");

}  // namespace

HICON LoadControlIcon() noexcept {
    return LoadIconW(ModuleInstance(), MAKEINTRESOURCEW(IDI_QUORVANE));
}

void DrawControl(HDC dc, const RECT& bounds, HICON icon) noexcept {
    const int saved = SaveDC(dc);
    IntersectClipRect(dc, bounds.left, bounds.top, bounds.right, bounds.bottom);
    if (icon) {
        DrawIcon(dc, bounds.left, bounds.top, icon);
    } else {
        Rectangle(dc, bounds.left, bounds.top, bounds.right, bounds.bottom);
        SetTextAlign(dc, TA_CENTER | TA_BASELINE);
        TextOutW(dc, (bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2,
                 kName.data(), static_cast<int>(kName.size()));
    }
    RestoreDC(dc, saved);
}

}  // namespace quorvane
