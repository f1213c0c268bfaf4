#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace brenvik {

// Gap between the tray icon and the popover.
inline constexpr int popoverGap = 4;

// Where a popover of `size` goes for a tray icon at `anchor` on a screen whose
// usable area is `area`: below the icon when it sits in the upper half of the
// area, above it otherwise, centred on it horizontally, and then moved as
// little as needed to lie fully inside the area (its top-left corner wins when
// it is larger than the area).
[[nodiscard]] QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& area);

} // namespace brenvik
