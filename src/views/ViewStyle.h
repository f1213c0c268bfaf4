#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <functional>

class QScrollBar;

namespace brenvik {

// The text styles the views use, sized relative to the application font the
// way the system sizes them relative to body text.
enum class TextStyle { body, headline, subheadline, caption, caption2, footnote, title3 };
enum class FontWeight { regular, semibold, bold };

[[nodiscard]] QFont styledFont(TextStyle style);
[[nodiscard]] QFont styledFont(TextStyle style, FontWeight weight);

// The named colours, resolved against a palette so that dark themes stay
// readable: the signal colours brighten on dark backgrounds, "secondary" is
// the palette's placeholder text colour and "primary" its window text.
// "violet" is "waiting for you"; "onViolet" is text on a violet fill.
enum class NamedColor {
    green,
    yellow,
    violet,
    red,
    orange,
    black,
    onViolet,
    primary,
    secondary,
    separator,
    windowBackground
};

[[nodiscard]] bool isDarkPalette(const QPalette& palette);

// The palette `widget` inherits: its parent's, or the application's for a
// window. Widgets that tint their own palette resolve colours against this one.
[[nodiscard]] QPalette inheritedPalette(const QWidget& widget);
[[nodiscard]] QColor namedColor(NamedColor color, const QPalette& palette);
[[nodiscard]] QColor withOpacity(QColor color, qreal opacity);

// A text in one style and one named colour, which it re-resolves whenever the
// palette changes.
class StyledLabel : public QLabel {
    Q_OBJECT

public:
    StyledLabel(TextStyle style, FontWeight weight, NamedColor color, QWidget* parent = nullptr);
    StyledLabel(TextStyle style, NamedColor color, QWidget* parent = nullptr);

    void setColor(NamedColor color);
    [[nodiscard]] NamedColor color() const noexcept { return m_color; }
    // Wraps, showing at most this many lines (0: one line, no wrapping).
    void setMaximumLines(int lines);

private:
    void applyColor();

    NamedColor m_color;
    std::function<void()> m_applyColor; // applyColor() behind the palette-change guard
};

// One line of text that ends in "…" when it does not fit; the whole text is
// its tool tip.
class ElidingLabel : public StyledLabel {
    Q_OBJECT

public:
    using StyledLabel::StyledLabel;

    void setFullText(const QString& text);
    [[nodiscard]] const QString& fullText() const noexcept { return m_fullText; }
    // Where the "…" goes; at the end unless set.
    void setElideMode(Qt::TextElideMode mode);
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    QString m_fullText;
    Qt::TextElideMode m_elideMode = Qt::ElideRight;
};

// A push button drawn from the palette: "bordered" for ordinary actions,
// "prominent" (filled with the accent colour) for the one main action.
class StyledButton : public QPushButton {
    Q_OBJECT

public:
    enum Kind { bordered, prominent };
    StyledButton(const QString& text, Kind kind, QWidget* parent = nullptr);

private:
    void applyPalette();

    Kind m_kind;
};

// A slim scroll bar without arrows, in the palette's colours.
void applySlimScrollBarStyle(QScrollBar* bar);

} // namespace brenvik
