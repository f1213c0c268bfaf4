#include "app/PopoverWindow.h"

#include "app/PopoverPlacement.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace brenvik {

namespace {

// A click on the tray icon while the popup is open first closes the popup
// (Qt closes popups on any press outside them) and then arrives as a click on
// the icon. Within this time after closing, that click only closes.
constexpr qint64 closingClickMilliseconds = 300;
// Hosts that say nothing of the icon's place are clicked on it, so the cursor
// stands in for it: as a square the size of a panel icon, to keep the popover
// off the icon even where the panel reserves no room at the screen's edge.
constexpr int cursorIconSize = 24;

} // namespace

PopoverWindow::PopoverWindow(QWidget* parent)
    : QWidget(parent, popoverWindowFlags(QGuiApplication::platformName())) {
    setWindowTitle(QStringLiteral("Brenvik Popover"));
    setAttribute(Qt::WA_StyledBackground);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1); // room for the border
    layout->setSpacing(0);
}

void PopoverWindow::setContent(QWidget* content) {
    if (m_content == content)
        return;
    delete m_content;
    m_content = content;
    if (m_content)
        layout()->addWidget(m_content);
}

void PopoverWindow::toggle(const QRect& anchor) {
    if (isVisible()) {
        hide();
        return;
    }
    if (m_sinceClosed.isValid() && m_sinceClosed.elapsed() < closingClickMilliseconds)
        return;
    open(anchor);
}

void PopoverWindow::open(const QRect& anchor) {
    QRect target = anchor;
    if (target.isEmpty()) {
        target.setSize({cursorIconSize, cursorIconSize});
        target.moveCenter(QCursor::pos());
    }
    QScreen* screen = QGuiApplication::screenAt(target.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    QRect area = screen ? screen->availableGeometry() : QRect();
    if (screen && area.isEmpty())
        area = screen->geometry();

    // Follow the view's own size: stretching it to a fixed box would only
    // pull its header apart.
    adjustSize();
    const QSize size = sizeHint();
    resize(size);
    if (!area.isEmpty() && !placedByDesktop())
        move(popoverPosition(target, size, area));
    show();
    raise();
    activateWindow();
}

bool PopoverWindow::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::Hide)
        m_sinceClosed.start();
    // No popup grab tells it about clicks elsewhere: losing the focus does.
    if (event->type() == QEvent::ActivationChange && placedByDesktop() && isVisible() &&
        !isActiveWindow())
        hide();
    return handled;
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (placedByDesktop() && event->matches(QKeySequence::Cancel)) {
        hide();
        return;
    }
    QWidget::keyPressEvent(event);
}

void PopoverWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace brenvik
