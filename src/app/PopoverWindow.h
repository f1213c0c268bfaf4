#pragma once

#include <QElapsedTimer>
#include <QRect>
#include <QSize>
#include <QWidget>

namespace brenvik {

// The popover: a frameless popup next to the tray icon that closes when the
// user clicks elsewhere. Its content is set once and kept.
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
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* m_content = nullptr;
    QElapsedTimer m_sinceClosed;
};

} // namespace brenvik
