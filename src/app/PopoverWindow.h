#pragma once

#include <QElapsedTimer>
#include <QRect>
#include <QSize>
#include <QWidget>

namespace brenvik {

// The popover: a frameless popup next to the tray icon that closes when the
// user clicks elsewhere. On Wayland the desktop places it, and it closes when
// it loses the focus. Its content is set once and kept.
class PopoverWindow : public QWidget {
    Q_OBJECT

public:
    explicit PopoverWindow(QWidget* parent = nullptr);

    // Takes the content; a second call replaces it.
    void setContent(QWidget* content);
    [[nodiscard]] QWidget* content() const noexcept { return m_content; }

    // Opens the popover next to `anchor` (global coordinates; empty: an icon
    // under the cursor) when it is closed, closes it when it is open.
    void toggle(const QRect& anchor);
    void open(const QRect& anchor);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] bool placedByDesktop() const { return windowType() != Qt::Popup; }

    QWidget* m_content = nullptr;
    QElapsedTimer m_sinceClosed;
};

} // namespace brenvik
