#include "app/ControlPanelPlacement.h"

#include <algorithm>

namespace brenvik {

namespace {

QRect outerOfSize(const QSize& size, const QMargins& frame, const QRect& area) {
    const QSize frameExtra(frame.left() + frame.right(), frame.top() + frame.bottom());
    return {QPoint(),
            size.boundedTo(area.size() - frameExtra).expandedTo(QSize(1, 1)) + frameExtra};
}

QRect keptInside(QRect outer, const QRect& area) {
    outer.moveBottomRight(
        QPoint(std::min(outer.right(), area.right()), std::min(outer.bottom(), area.bottom())));
    // Top-left wins where even the frame alone does not fit.
    outer.moveTopLeft(
        QPoint(std::max(outer.left(), area.left()), std::max(outer.top(), area.top())));
    return outer;
}

} // namespace

QRect controlPanelGeometry(const QSize& natural, const QMargins& frame, const QRect& area) {
    QRect outer = outerOfSize(natural, frame, area);
    outer.moveCenter(area.center());
    return keptInside(outer, area).marginsRemoved(frame);
}

QRect resizedControlPanelGeometry(const QRect& content, const QSize& size, const QMargins& frame,
                                  const QRect& area) {
    QRect outer = outerOfSize(size, frame, area);
    outer.moveTopLeft(content.marginsAdded(frame).topLeft());
    return keptInside(outer, area).marginsRemoved(frame);
}

} // namespace brenvik
