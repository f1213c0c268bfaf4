#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringView>
#include <QtGlobal>

namespace brenvik {

// Gap between the tray icon and the popover.
inline constexpr int popoverGap = 4;

// Where a popover of `size` goes for a tray icon at `anchor` on a screen whose
// usable area is `area`: below the icon when it sits in the upper half of the
// area, above it otherwise, centred on it horizontally, and then moved as
// little as needed to lie fully inside the area (its top-left corner wins when
// it is larger than the area).
[[nodiscard]] QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& area);

// The popover's window on a platform: a popup we place next to the icon, or,
// where a client can neither place its windows nor know the pointer (Wayland),
// a borderless window the desktop places. A Wayland popup would be attached to
// whichever of our windows last had input, at a position relative to it.
[[nodiscard]] Qt::WindowFlags popoverWindowFlags(QStringView platformName);

} // namespace brenvik
