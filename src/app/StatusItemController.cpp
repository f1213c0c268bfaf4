#include "app/StatusItemController.h"

#include "app/SystemTraySurface.h"
#include "app/TrayIconPainter.h"
#include "monitor/ProcessMonitoring.h"
#include "views/MenuPopoverView.h"

namespace brenvik {

StatusItemController::StatusItemController(ViewActions& actions, QObject* parent)
    : QObject(parent)
    , m_actions(actions)
    , m_surface(new SystemTraySurface(actions, this)) {
    connect(m_surface, &TraySurface::triggered, this, &StatusItemController::togglePopover);
}

StatusItemController::StatusItemController(ViewActions& actions, TraySurface& surface,
                                           QObject* parent)
    : QObject(parent)
    , m_actions(actions)
    , m_surface(&surface) {
    connect(m_surface, &TraySurface::triggered, this, &StatusItemController::togglePopover);
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::configure(CodexProcessMonitor& monitor) {
    // The popover's content is made here once and shown at every opening.
    m_popover.setContent(new MenuPopoverView(monitor, m_actions));

    for (const auto& subscription : std::as_const(m_subscriptions))
        disconnect(subscription);
    m_subscriptions.clear();
    m_monitor = &monitor;
    // The monitor announces before it stores; re-reading it on the next
    // event-loop turn sees the new values.
    m_subscriptions << connect(&monitor, &CodexProcessMonitor::matchesChanged, this,
                               &StatusItemController::redrawFromMonitor, Qt::QueuedConnection)
                    << connect(&monitor, &CodexProcessMonitor::lastErrorChanged, this,
                               &StatusItemController::redrawFromMonitor, Qt::QueuedConnection);
    updateButton(monitor.runState());
    updateMenu(monitor.matches());
}

void StatusItemController::redrawFromMonitor() {
    if (!m_monitor)
        return;
    updateButton(m_monitor->runState());
    updateMenu(m_monitor->matches());
}

void StatusItemController::updateMenu(const QList<ProcessMatch>& matches) {
    QList<SessionMenuItem> items = sessionMenuItems(matches);
    if (m_menuItems == items)
        return;
    m_surface->setSessionItems(items);
    m_menuItems = std::move(items);
}

void StatusItemController::updateButton(const CodexRunState& state) {
    // The plan's limits under the status line, where a session log named them.
    QStringList toolTip{detailText(state)};
    if (m_monitor)
        toolTip << limitsLines(m_monitor->accountLimits(), QDateTime::currentDateTimeUtc());
    Appearance next{stateColor(state), badgeText(state), toolTip.join(u'\n')};
    // Tray hosts repaint (and some flicker) on every update, so unchanged
    // parts are not sent again.
    if (!m_shown || m_shown->color != next.color || m_shown->badge != next.badge)
        m_surface->setIcon(makeTrayIcon(next.color, next.badge));
    if (!m_shown || m_shown->toolTip != next.toolTip)
        m_surface->setToolTip(next.toolTip);
    m_shown = std::move(next);
}

void StatusItemController::togglePopover() {
    m_popover.toggle(m_surface->geometry());
}

} // namespace brenvik
