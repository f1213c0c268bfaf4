#include "app/ControlPanelPlacement.h"

#include <algorithm>

namespace brenvik {

QRect controlPanelGeometry(const QSize& natural, const QMargins& frame, const QRect& area) {
    const QSize frameExtra(frame.left() + frame.right(), frame.top() + frame.bottom());
    const QSize size = natural.boundedTo(area.size() - frameExtra).expandedTo(QSize(1, 1));
    QRect outer(QPoint(), size + frameExtra);
    outer.moveCenter(area.center());
    // Top-left wins where even the frame alone does not fit.
    outer.moveTopLeft(
        QPoint(std::max(outer.left(), area.left()), std::max(outer.top(), area.top())));
    return outer.marginsRemoved(frame);
}

} // namespace brenvik
