#include "app/ControlPanelController.h"

#include "views/ControlPanelView.h"
#include "views/StatusPresentation.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>

namespace brenvik {

ControlPanelController::ControlPanelController(CodexProcessMonitor& monitor,
                                               LaunchAtLoginController& launchAtLogin,
                                               AppVisibilityController& appVisibility,
                                               ViewActions& actions,
                                               NotificationsController* notifications)
    : m_monitor(monitor)
    , m_launchAtLogin(launchAtLogin)
    , m_appVisibility(appVisibility)
    , m_actions(actions)
    , m_notifications(notifications) {}

ControlPanelController::~ControlPanelController() = default;

void ControlPanelController::show() {
    if (!m_window)
        buildWindow();
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
                                      nullptr, m_notifications);
    layout->addWidget(view);
    m_view = view;
    setTrayHostAvailable(m_trayHostAvailable);
    // Not resizable; closing hides the window, which stays for the next show().
    // Its natural size, but never beyond the screen: then the list gives way.
    view->ensurePolished(); // fonts and styles decide the sizes
    QSize size = view->naturalSize();
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        constexpr QSize kFrame(16, 48); // title bar and borders, about
        size = size.boundedTo(screen->availableGeometry().size() - kFrame)
                   .expandedTo(view->minimumSize());
        QRect frame(QPoint(), size);
        frame.moveCenter(screen->availableGeometry().center());
        m_window->setFixedSize(size);
        m_window->move(frame.topLeft());
    } else {
        m_window->setFixedSize(size);
    }
}

} // namespace brenvik
