#include "app/SystemTraySurface.h"

#include "views/ViewActions.h"

namespace brenvik {

SystemTraySurface::SystemTraySurface(ViewActions& actions, QObject* parent)
    : TraySurface(parent)
    , m_actions(actions) {
    m_menu.setWindowTitle(QStringLiteral("Brenvik Menu"));
    m_menu.addAction(tr("Open Control Panel"), this, [&actions] { actions.openControlPanel(); });
    m_menu.addAction(tr("Refresh Now"), this, [&actions] { actions.refreshNow(); });
    m_menu.addSeparator();
    m_menu.addAction(tr("Quit"), this, [&actions] { actions.quit(); });

    connect(&m_hostWatcher, &TrayHostWatcher::hostAvailableChanged, this, [this] {
        setHostAvailable(true);
        createTrayIcon();
    });
    setHostAvailable(m_hostWatcher.hostAvailable());
    if (m_hostWatcher.hostAvailable())
        createTrayIcon();
}

SystemTraySurface::~SystemTraySurface() = default;

void SystemTraySurface::setIcon(const QIcon& icon) {
    m_icon = icon;
    if (m_trayIcon)
        m_trayIcon->setIcon(m_icon);
    else if (m_hostWatcher.hostAvailable())
        createTrayIcon();
}

void SystemTraySurface::setToolTip(const QString& text) {
    m_toolTip = text;
    if (m_trayIcon)
        m_trayIcon->setToolTip(m_toolTip);
}

void SystemTraySurface::setSessionItems(const QList<SessionMenuItem>& items) {
    for (QAction* action : std::as_const(m_sessionActions)) {
        m_menu.removeAction(action);
        action->deleteLater(); // it may be the one being triggered
    }
    m_sessionActions.clear();
    if (items.isEmpty())
        return;
    QAction* first = m_menu.actions().value(0);
    for (const SessionMenuItem& item : items) {
        auto* action = new QAction(item.text, &m_menu);
        connect(action, &QAction::triggered, this,
                [this, pid = item.pid] { m_actions.goToSession(pid); });
        m_sessionActions.append(action);
    }
    auto* separator = new QAction(&m_menu);
    separator->setSeparator(true);
    m_sessionActions.append(separator);
    m_menu.insertActions(first, m_sessionActions);
}

QRect SystemTraySurface::geometry() const {
    return m_trayIcon ? m_trayIcon->geometry() : QRect();
}

void SystemTraySurface::createTrayIcon() {
    // A host shows an empty slot for an icon without a picture.
    if (m_trayIcon || m_icon.isNull())
        return;
    m_trayIcon = std::make_unique<QSystemTrayIcon>(m_icon);
    m_trayIcon->setToolTip(m_toolTip);
    m_trayIcon->setContextMenu(&m_menu);
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    Q_EMIT triggered();
            });
    m_trayIcon->show();
}

} // namespace brenvik
