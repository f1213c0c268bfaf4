#include "views/StatusDotShape.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brenvik {

namespace {
// The bubble's face keeps most of the width, so the count shrinks little;
// what is left holds a tail that still shows at 22 pixels.
constexpr double kBubbleFaceShare = 0.91;
} // namespace

StatusDotShape statusDotShape(StateColor color, const QRectF& box) {
    const double size = std::min(box.width(), box.height());
    const QRectF square(box.topLeft(), QSizeF(size, size));
    if (color != StateColor::violet) {
        QPainterPath circle;
        circle.addEllipse(square);
        return {circle, square.center(), size / 2.0};
    }
    const double r = size * kBubbleFaceShare / 2.0;
    const QPointF centre(square.right() - r, square.top() + r);
    const auto onFace = [&](double degrees) {
        const double angle = degrees * std::numbers::pi / 180.0;
        return centre + QPointF(r * std::cos(angle), r * std::sin(angle));
    };
    // Both sides of the tail bend inwards, as a speech bubble's do.
    QPainterPath tail;
    tail.moveTo(onFace(90));
    tail.quadTo(centre + QPointF(-0.45 * r, 0.95 * r), square.bottomLeft());
    tail.quadTo(centre + QPointF(-0.95 * r, 0.45 * r), onFace(180));
    tail.closeSubpath();
    QPainterPath face;
    face.addEllipse(centre, r, r);
    return {face.united(tail).simplified(), centre, r};
}

} // namespace brenvik
