#pragma once

#include "views/StatusPresentation.h"

#include <QPainterPath>
#include <QPointF>
#include <QRectF>

namespace brenvik {

// The status dot's outline, one for the tray icon and the status header: a
// circle, or while a session waits for the user a speech bubble (its round
// face up and to the right, its tail in the bottom-left corner), so that
// "waiting" reads without colour too.
struct StatusDotShape {
    QPainterPath outline;
    QPointF faceCentre; // where the count goes
    double faceRadius = 0;
};

// The shape filling the square at the top left of `box`. A pen drawn on the
// outline reaches half its width beyond it.
[[nodiscard]] StatusDotShape statusDotShape(StateColor color, const QRectF& box);

} // namespace brenvik
