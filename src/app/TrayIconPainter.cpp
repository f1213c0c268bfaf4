#include "app/TrayIconPainter.h"

#include "views/StatusDotShape.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <cmath>

namespace brenvik {

namespace {

// How much of the dot's diameter a badge of n characters may cover. Short
// counts stay large; "99+" shrinks to fit inside the rim.
[[nodiscard]] double widthShare(qsizetype characters) {
    switch (characters) {
    case 1:
        return 0.6;
    case 2:
        return 0.8;
    default:
        return 0.9;
    }
}

[[nodiscard]] QFont badgeFont(int pixelSize) {
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Sans"), QStringLiteral("Noto Sans"),
                      QStringLiteral("Liberation Sans")});
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(QFont::Bold);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

// The largest bold font whose ink fits the box, with its ink rectangle.
[[nodiscard]] std::pair<QFont, QRectF> fittingFont(const QString& text, double maxWidth,
                                                   double maxHeight) {
    for (int size = static_cast<int>(std::ceil(maxHeight * 1.6)); size > 4; --size) {
        QFont font = badgeFont(size);
        const QRectF ink = QFontMetricsF(font).tightBoundingRect(text);
        if (ink.width() <= maxWidth && ink.height() <= maxHeight)
            return {font, ink};
    }
    QFont font = badgeFont(5);
    return {font, QFontMetricsF(font).tightBoundingRect(text)};
}

} // namespace

QColor trayDotColor(StateColor color) {
    switch (color) {
    case StateColor::yellow:
        return QColor(0xF5, 0xC2, 0x11);
    case StateColor::violet:
        return QColor(0x7B, 0x3F, 0xE4);
    case StateColor::red:
        return QColor(0xE0, 0x36, 0x2C);
    case StateColor::green:
        break;
    }
    return QColor(0x2E, 0xA0, 0x43);
}

QColor trayBadgeTextColor(StateColor color) {
    return color == StateColor::yellow ? QColor(0x1C, 0x1C, 0x1E) : QColor(Qt::white);
}

QImage paintTrayIcon(StateColor color, QStringView badge, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (pixels <= 0)
        return image;

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);

    const double size = pixels;
    // A thin darker rim keeps the dot apart from light and dark panels alike.
    const double rim = std::max(1.0, size / 22.0);
    const StatusDotShape shape =
        statusDotShape(color, QRectF(rim / 2.0, rim / 2.0, size - rim, size - rim));
    const QColor fill = trayDotColor(color);
    painter.setPen(QPen(fill.darker(140), rim, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(fill);
    painter.drawPath(shape.outline);

    if (badge.isEmpty())
        return image;

    const QString text = badge.toString();
    const QPointF centre = shape.faceCentre;
    // The count keeps the size it has on the round dot wherever the
    // bubble's smaller face leaves room, so every state reads alike.
    const double roundInner = size - 2.0 * rim;
    const double faceInner = 2.0 * (shape.faceRadius - rim / 2.0);
    const auto [font, ink] =
        fittingFont(text, std::min(roundInner * widthShare(text.size()), faceInner * 0.92),
                    std::min(roundInner * 0.6, faceInner * 0.67));
    // Centre the ink itself (not the line box), snapped to whole pixels so
    // the hinted stems stay sharp.
    const double x = std::round(centre.x() - ink.width() / 2.0 - ink.left());
    const double y = std::round(centre.y() - ink.height() / 2.0 - ink.top());
    painter.setFont(font);
    painter.setPen(trayBadgeTextColor(color));
    painter.drawText(QPointF(x, y), text);
    return image;
}

QIcon makeTrayIcon(StateColor color, QStringView badge) {
    QIcon icon;
    for (int pixels : trayIconPixelSizes)
        icon.addPixmap(QPixmap::fromImage(paintTrayIcon(color, badge, pixels)));
    return icon;
}

} // namespace brenvik
