#include "views/ViewStyle.h"

#include "views/WidgetEvent.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <cmath>

namespace brenvik {

namespace {

// Point sizes of the system text styles at the default body size of 13.
constexpr qreal kBodySize = 13.0;

qreal nominalSize(TextStyle style) {
    switch (style) {
    case TextStyle::body:
    case TextStyle::headline:
        return 13.0;
    case TextStyle::subheadline:
        return 11.0;
    case TextStyle::caption:
    case TextStyle::caption2:
    case TextStyle::footnote:
        return 10.0;
    case TextStyle::title3:
        return 15.0;
    }
    return kBodySize;
}

FontWeight defaultWeight(TextStyle style) {
    return style == TextStyle::headline ? FontWeight::semibold : FontWeight::regular;
}

} // namespace

QFont styledFont(TextStyle style) {
    return styledFont(style, defaultWeight(style));
}

QFont styledFont(TextStyle style, FontWeight weight) {
    QFont font = QApplication::font();
    const qreal scale = nominalSize(style) / kBodySize;
    if (font.pointSizeF() > 0) {
        // Below 7.5 points small text stops being legible on a 96 dpi screen.
        font.setPointSizeF(std::max(7.5, font.pointSizeF() * scale));
    } else if (font.pixelSize() > 0) {
        font.setPixelSize(std::max(10, qRound(font.pixelSize() * scale)));
    }
    switch (weight) {
    case FontWeight::regular:
        font.setWeight(QFont::Normal);
        break;
    case FontWeight::semibold:
        font.setWeight(QFont::DemiBold);
        break;
    case FontWeight::bold:
        font.setWeight(QFont::Bold);
        break;
    }
    return font;
}

bool isDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::Window).lightnessF() < 0.5;
}

QPalette inheritedPalette(const QWidget& widget) {
    return widget.parentWidget() ? widget.parentWidget()->palette() : QApplication::palette();
}

QColor withOpacity(QColor color, qreal opacity) {
    color.setAlphaF(color.alphaF() * opacity);
    return color;
}

QColor namedColor(NamedColor color, const QPalette& palette) {
    const bool dark = isDarkPalette(palette);
    switch (color) {
    case NamedColor::green:
        return dark ? QColor(48, 209, 88) : QColor(40, 180, 75);
    case NamedColor::yellow:
        return dark ? QColor(255, 214, 10) : QColor(246, 190, 0);
    case NamedColor::violet:
        // The tray's violet on light windows (5:1 on their grey); lighter on
        // dark ones (5.6:1), where dark text goes on it.
        return dark ? QColor(0xAE, 0x8B, 0xFF) : QColor(0x7B, 0x3F, 0xE4);
    case NamedColor::red:
        return dark ? QColor(255, 84, 74) : QColor(215, 40, 30);
    case NamedColor::orange:
        return dark ? QColor(255, 159, 10) : QColor(215, 110, 0);
    case NamedColor::black:
        return Qt::black;
    case NamedColor::onViolet:
        return dark ? QColor(0x1C, 0x1C, 0x1E) : QColor(Qt::white);
    case NamedColor::primary:
        return palette.color(QPalette::WindowText);
    case NamedColor::secondary: {
        // Placeholder text as themes define it; where a theme leaves it equal
        // to the text colour, the text colour at half strength.
        const QColor placeholder = palette.color(QPalette::PlaceholderText);
        if (placeholder.isValid() && placeholder != palette.color(QPalette::Text))
            return placeholder;
        return withOpacity(palette.color(QPalette::WindowText), 0.55);
    }
    case NamedColor::separator:
        return withOpacity(palette.color(QPalette::WindowText), dark ? 0.18 : 0.13);
    case NamedColor::windowBackground:
        return palette.color(QPalette::Window);
    }
    return palette.color(QPalette::WindowText);
}

StyledLabel::StyledLabel(TextStyle style, FontWeight weight, NamedColor color, QWidget* parent)
    : QLabel(parent)
    , m_color(color) {
    setFont(styledFont(style, weight));
    setTextFormat(Qt::PlainText);
    // Its own setPalette() calls come back as palette changes: one guard for both.
    m_applyColor = onWidgetEvent(this, QEvent::PaletteChange, [this] { applyColor(); });
    m_applyColor();
}

StyledLabel::StyledLabel(TextStyle style, NamedColor color, QWidget* parent)
    : StyledLabel(style, defaultWeight(style), color, parent) {}

void StyledLabel::setColor(NamedColor color) {
    if (color == m_color)
        return;
    m_color = color;
    m_applyColor();
}

void StyledLabel::setMaximumLines(int lines) {
    setWordWrap(lines > 0);
    const QFontMetrics metrics(font());
    setMaximumHeight(lines > 0 ? metrics.lineSpacing() * (lines - 1) + metrics.height() + 2
                               : QWIDGETSIZE_MAX);
}

void StyledLabel::applyColor() {
    // Resolve against the inherited palette, not the one tinted before.
    const QPalette inherited = inheritedPalette(*this);
    QPalette tinted = palette();
    tinted.setColor(QPalette::WindowText, namedColor(m_color, inherited));
    tinted.setColor(QPalette::Text, namedColor(m_color, inherited));
    setPalette(tinted);
}

void ElidingLabel::setFullText(const QString& text) {
    if (text == m_fullText)
        return;
    m_fullText = text;
    setToolTip(text);
    elide();
    updateGeometry();
}

void ElidingLabel::setElideMode(Qt::TextElideMode mode) {
    m_elideMode = mode;
    elide();
}

QSize ElidingLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

QSize ElidingLabel::sizeHint() const {
    // Rounded up: elidedText() measures in fractions and cuts a text given
    // its advance rounded down.
    const QFontMetricsF metrics(font());
    return {int(std::ceil(metrics.horizontalAdvance(m_fullText))),
            int(std::ceil(metrics.height()))};
}

void ElidingLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    elide();
}

void ElidingLabel::elide() {
    QString oneLine = m_fullText;
    oneLine.replace(u'\n', u' ');
    setText(fontMetrics().elidedText(oneLine, m_elideMode, contentsRect().width()));
}

namespace {
QString css(const QColor& color) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alphaF(), 0, 'f', 3);
}
} // namespace

StyledButton::StyledButton(const QString& text, Kind kind, QWidget* parent)
    : QPushButton(text, parent)
    , m_kind(kind) {
    // As on other desktops' utility windows: Tab reaches buttons, clicks do
    // not leave a focus ring behind.
    setFocusPolicy(Qt::TabFocus);
    onWidgetEvent(this, QEvent::PaletteChange, [this] { applyPalette(); })();
}

void StyledButton::applyPalette() {
    const QPalette pal = inheritedPalette(*this);
    const bool dark = isDarkPalette(pal);
    const QColor accent = pal.color(QPalette::Highlight);
    const QColor text = pal.color(QPalette::WindowText);
    QColor background, label, border;
    if (m_kind == prominent) {
        background = accent;
        label = pal.color(QPalette::HighlightedText);
        border = accent.darker(110);
    } else {
        background = dark ? QColor(255, 255, 255, 30) : QColor(255, 255, 255);
        label = pal.color(QPalette::ButtonText);
        border = withOpacity(text, dark ? 0.22 : 0.2);
    }
    const QColor hover = m_kind == prominent
                             ? accent.lighter(108)
                             : (dark ? QColor(255, 255, 255, 44) : QColor(246, 246, 246));
    const QColor pressed = m_kind == prominent
                               ? accent.darker(115)
                               : (dark ? QColor(255, 255, 255, 20) : QColor(228, 228, 228));
    setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; color: %2; border: 1px solid %3;"
                       " border-radius: 6px; padding: 3px 14px; min-height: 18px; }"
                       "QPushButton:hover { background-color: %4; }"
                       "QPushButton:pressed { background-color: %5; }"
                       "QPushButton:focus { border: 2px solid %6; padding: 2px 13px; }")
            .arg(css(background), css(label), css(border), css(hover), css(pressed),
                 css(withOpacity(accent, 0.6))));
}

void applySlimScrollBarStyle(QScrollBar* bar) {
    const QPalette pal = inheritedPalette(*bar);
    const QColor text = pal.color(QPalette::WindowText);
    bar->setStyleSheet(
        QStringLiteral("QScrollBar:vertical { background: %1; width: 8px; margin: 0; border: none;"
                       " border-radius: 4px; }"
                       "QScrollBar::handle:vertical { background: %2; min-height: 24px;"
                       " border-radius: 4px; }"
                       "QScrollBar::handle:vertical:hover { background: %3; }"
                       "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0;"
                       " border: none; background: none; }"
                       "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {"
                       " background: none; }")
            .arg(css(withOpacity(text, 0.06)), css(withOpacity(text, 0.32)),
                 css(withOpacity(text, 0.45))));
}

} // namespace brenvik
