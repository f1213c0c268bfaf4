#include "app/PopoverPlacement.h"

#include <algorithm>

namespace brenvik {

QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& area) {
    const bool iconInUpperHalf = anchor.center().y() < area.center().y();
    int y = iconInUpperHalf ? anchor.bottom() + 1 + popoverGap
                            : anchor.top() - popoverGap - size.height();
    int x = anchor.center().x() - size.width() / 2;
    // Right and bottom first, so that left and top win for an oversized popover.
    x = std::max(std::min(x, area.right() + 1 - size.width()), area.left());
    y = std::max(std::min(y, area.bottom() + 1 - size.height()), area.top());
    return {x, y};
}

Qt::WindowFlags popoverWindowFlags(QStringView platformName) {
    const bool desktopPlaces = platformName.startsWith(u"wayland");
    return (desktopPlaces ? Qt::Window : Qt::Popup) | Qt::FramelessWindowHint;
}

} // namespace brenvik
