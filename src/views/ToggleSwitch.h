#pragma once

#include <QAbstractButton>

namespace brenvik {

// A labelled switch: the label on the leading side, the switch on the
// trailing edge. It never flips itself: a click or Space asks for the other
// position through toggleRequested(), and the owner sets the position it
// reads back from the model, so the switch always shows the model's state.
class ToggleSwitch : public QAbstractButton {
    Q_OBJECT

public:
    explicit ToggleSwitch(const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void toggleRequested(bool on);

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override;
    void focusInEvent(QFocusEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& pos) const override;

private:
    // The switch's track, and the gap between it and the label.
    static constexpr qreal kTrackWidth = 32, kTrackHeight = 18, kLabelGap = 12;

    [[nodiscard]] QRectF trackRect() const;

    // The focus ring shows only when the keyboard brought the focus here.
    bool m_keyboardFocus = false;
};

} // namespace brenvik
