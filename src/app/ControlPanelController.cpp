#include "app/ControlPanelController.h"

#include "app/ControlPanelPlacement.h"
#include "views/ControlPanelView.h"
#include "views/StatusPresentation.h"
#include "views/WidgetEvent.h"

#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

namespace brenvik {

ControlPanelController::ControlPanelController(CodexProcessMonitor& monitor,
                                               LaunchAtLoginController& launchAtLogin,
                                               AppVisibilityController& appVisibility,
                                               ViewActions& actions,
                                               NotificationsController* notifications,
                                               const SessionPlaceTracker* places)
    : m_monitor(monitor)
    , m_launchAtLogin(launchAtLogin)
    , m_appVisibility(appVisibility)
    , m_actions(actions)
    , m_notifications(notifications)
    , m_places(places) {}

ControlPanelController::~ControlPanelController() = default;

void ControlPanelController::show() {
    if (!m_window)
        buildWindow();
    // What changed while it was hidden.
    fitWindow();
    // Left on another desktop, the window manager keeps it there (unmapped,
    // so not exposed): shown afresh, it comes to the desktop the user is on.
    if (m_window->isVisible() && !m_window->isMinimized() && m_window->windowHandle() &&
        !m_window->windowHandle()->isExposed())
        m_window->hide();
    // Restored, not only raised: a minimised panel without a taskbar entry
    // would be lost to the user.
    m_window->setWindowState((m_window->windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void ControlPanelController::setTrayHostAvailable(bool available) {
    m_trayHostAvailable = available;
    if (m_view) {
        m_view->setMissingTrayText(
            available ? QString() : missingTrayText(qEnvironmentVariable("XDG_CURRENT_DESKTOP")));
    }
}

void ControlPanelController::showGoResult(const GoResult& result) {
    m_goResult = result;
    if (m_view)
        m_view->showGoResult(result);
}

void ControlPanelController::buildWindow() {
    // Titled, closable and minimisable; a fixed-size window has nothing to maximise.
    m_window = std::make_unique<QWidget>(
        nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                     Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                     Qt::WindowCloseButtonHint);
    m_window->setWindowTitle(QStringLiteral("Brenvik"));
    auto* layout = new QVBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    auto* view = new ControlPanelView(m_monitor, m_launchAtLogin, m_appVisibility, m_actions,
                                      nullptr, m_notifications, m_places);
    // Where a large font or scale needs more than the screen has, the content
    // scrolls instead of being cut.
    auto* scroll = new QScrollArea(m_window.get());
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(view);
    layout->addWidget(scroll);
    m_view = view;
    setTrayHostAvailable(m_trayHostAvailable);
    view->showGoResult(m_goResult);
    // Not resizable; closing hides the window, which stays for the next show().
    view->ensurePolished(); // fonts and styles decide the sizes
    m_naturalSize = view->naturalSize();
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        m_window->setFixedSize(m_naturalSize);
        return;
    }
    const QMargins frame = controlPanelFrameEstimate;
    const QRect content = controlPanelGeometry(m_naturalSize, frame, screen->availableGeometry());
    m_window->setFixedSize(content.size());
    // move() places the frame, not the content.
    m_window->move(content.topLeft() - QPoint(frame.left(), frame.top()));
    // The content wants another size.
    onWidgetEvent(view, QEvent::LayoutRequest, [this] { fitWindow(); });
}

void ControlPanelController::fitWindow() {
    const QScreen* screen = m_window->screen();
    if (!screen)
        return;
    // A scroll area scrolls once its content wants more than it has, so the
    // window gives it that (no less than the natural size) while the screen
    // has room.
    const QSize wanted = m_view->wantedSize(m_naturalSize);
    if (wanted == m_window->size())
        return;
    const QMargins frame = controlPanelFrameEstimate;
    const QRect content = resizedControlPanelGeometry(
        QRect(m_window->pos() + QPoint(frame.left(), frame.top()), m_window->size()), wanted, frame,
        screen->availableGeometry());
    if (content.size() == m_window->size())
        return;
    m_window->setFixedSize(content.size());
    m_window->move(content.topLeft() - QPoint(frame.left(), frame.top()));
}

} // namespace brenvik
