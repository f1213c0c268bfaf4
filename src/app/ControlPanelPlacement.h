#pragma once

#include <QMargins>
#include <QRect>
#include <QSize>

namespace brenvik {

// What a window manager adds around the panel where it has not said yet: a
// title bar and borders, about (Qt's own Wayland decoration included).
inline constexpr QMargins controlPanelFrameEstimate{8, 44, 8, 8};

// Where the control panel's content goes on a screen whose usable area is
// `area`: at `natural` size where that fits with the window's `frame`,
// smaller where it does not (the content then scrolls), and centred so that
// the frame, not only the content, lies inside the area.
[[nodiscard]] QRect controlPanelGeometry(const QSize& natural, const QMargins& frame,
                                         const QRect& area);

// The panel whose content lies at `content`, resized to `size` as far as the
// area allows: it stays where it is unless its frame would leave the area.
[[nodiscard]] QRect resizedControlPanelGeometry(const QRect& content, const QSize& size,
                                                const QMargins& frame, const QRect& area);

} // namespace brenvik
