#include "views/ToggleSwitch.h"

#include "views/ViewStyle.h"

#include <QFocusEvent>
#include <QPainter>
#include <QPainterPath>

namespace brenvik {

ToggleSwitch::ToggleSwitch(const QString& label, QWidget* parent)
    : QAbstractButton(parent) {
    setText(label);
    setAccessibleName(label);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this,
            [this] { Q_EMIT toggleRequested(!isChecked()); });
}

QSize ToggleSwitch::sizeHint() const {
    const QFontMetrics metrics(font());
    return {int(metrics.horizontalAdvance(text()) + kLabelGap + kTrackWidth + 4),
            std::max(int(kTrackHeight) + 2, metrics.height())};
}

QSize ToggleSwitch::minimumSizeHint() const {
    return sizeHint();
}

void ToggleSwitch::nextCheckState() {
    // The owner decides; see toggleRequested().
}

void ToggleSwitch::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    m_keyboardFocus = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                      reason == Qt::ShortcutFocusReason;
    QAbstractButton::focusInEvent(event);
}

bool ToggleSwitch::hitButton(const QPoint& pos) const {
    return rect().contains(pos);
}

QRectF ToggleSwitch::trackRect() const {
    return {width() - kTrackWidth - 2, (height() - kTrackHeight) / 2.0, kTrackWidth, kTrackHeight};
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    const bool dark = isDarkPalette(pal);
    const qreal disabled = isEnabled() ? 1.0 : 0.45;

    painter.setPen(withOpacity(pal.color(QPalette::WindowText), disabled));
    painter.setFont(font());
    painter.drawText(QRectF(0, 0, trackRect().left() - kLabelGap, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());

    const QRectF track = trackRect();
    const qreal radius = track.height() / 2;
    QColor trackColor = isChecked()
                            ? pal.color(QPalette::Highlight)
                            : withOpacity(pal.color(QPalette::WindowText), dark ? 0.22 : 0.14);
    if (isDown())
        trackColor = trackColor.darker(112);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(trackColor, disabled));
    painter.drawRoundedRect(track, radius, radius);

    if (hasFocus() && m_keyboardFocus) {
        QPen ring(withOpacity(pal.color(QPalette::Highlight), 0.5), 2.5);
        painter.setPen(ring);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(-1.5, -1.5, 1.5, 1.5), radius + 1.5, radius + 1.5);
    }

    const qreal inset = 2;
    const qreal knob = track.height() - 2 * inset;
    const qreal x = isChecked() ? track.right() - inset - knob : track.left() + inset;
    const QRectF knobRect(x, track.top() + inset, knob, knob);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(knobRect.translated(0, 0.6));
    painter.setBrush(withOpacity(QColor(255, 255, 255), disabled < 1 ? 0.8 : 1.0));
    painter.drawEllipse(knobRect);
}

} // namespace brenvik
