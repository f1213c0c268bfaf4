#include "app/AppModel.h"

#include "app/ControlPanelController.h"
#include "app/StatusItemController.h"
#include "notify/DesktopNotifier.h"
#include "notify/NoticeTarget.h"
#include "preferences/AppVisibilityController.h"
#include "preferences/LaunchAtLoginController.h"
#include "preferences/NotificationsController.h"

#include <QCoreApplication>
#include <QTimer>

namespace brenvik {

namespace {

std::unique_ptr<CodexProcessMonitor> makeMonitor(const AppModel::Parts& parts) {
    if (!parts.scan && !parts.clock)
        return std::make_unique<CodexProcessMonitor>();
    return std::make_unique<CodexProcessMonitor>(
        parts.scan ? parts.scan : [] { return scanCodexProcesses(); },
        parts.clock ? parts.clock : &QDateTime::currentDateTimeUtc);
}

std::unique_ptr<SessionPlaceTracker> makePlaces(CodexProcessMonitor& monitor,
                                                const AppModel::Parts& parts) {
    if (!parts.placeFinder || !parts.goTo)
        return std::make_unique<SessionPlaceTracker>(monitor);
    return std::make_unique<SessionPlaceTracker>(monitor, parts.placeFinder, parts.goTo);
}

std::unique_ptr<AppVisibilityController> makeAppVisibility(const AppModel::Parts& parts,
                                                           StoredPreferences& preferences) {
    if (parts.activationPolicy)
        return std::make_unique<AppVisibilityController>(*parts.activationPolicy, preferences);
    return std::make_unique<AppVisibilityController>(preferences);
}

} // namespace

AppModel& AppModel::shared() {
    // A child of the application object, deleted by its post routines: that
    // runs first thing in the application's destructor, while windows and the
    // tray can still be torn down properly.
    static AppModel* const instance = [] {
        auto* model = new AppModel(Parts{}, QCoreApplication::instance());
        qAddPostRoutine([] {
            delete QCoreApplication::instance()->findChild<AppModel*>(QString(),
                                                                      Qt::FindDirectChildrenOnly);
        });
        return model;
    }();
    return *instance;
}

AppModel::AppModel(Parts parts, QObject* parent)
    : QObject(parent)
    , m_runAfter(parts.runAfter ? std::move(parts.runAfter)
                                : RunAfter([this](std::chrono::milliseconds delay,
                                                  std::function<void()> step) {
                                      QTimer::singleShot(delay, this, std::move(step));
                                  }))
    , m_clock(parts.clock ? parts.clock : &QDateTime::currentDateTimeUtc)
    , m_monitor(makeMonitor(parts))
    , m_places(makePlaces(*m_monitor, parts))
    , m_launchAtLogin(std::make_unique<LaunchAtLoginController>())
    , m_preferences(std::make_unique<StoredPreferences>(parts.settingsFile))
    , m_appVisibility(makeAppVisibility(parts, *m_preferences))
    , m_notifications(std::make_unique<NotificationsController>(*m_preferences))
    , m_controlPanel(
          std::make_unique<ControlPanelController>(*m_monitor, *m_launchAtLogin, *m_appVisibility,
                                                   *this, m_notifications.get(), m_places.get()))
    , m_statusItem(parts.traySurface
                       ? std::make_unique<StatusItemController>(*this, *parts.traySurface)
                       : std::make_unique<StatusItemController>(*this))
    , m_notificationPolicy(std::make_unique<NotificationPolicy>()) {
    NotificationBus* bus = parts.notificationBus;
    if (!bus) {
        auto* dbus = new DBusNotificationBus();
        m_ownNotificationBus.reset(dbus);
        connect(dbus, &DBusNotificationBus::defaultActionInvoked, this,
                &AppModel::goToSessionOfNotice);
        connect(dbus, &DBusNotificationBus::openControlPanelInvoked, this,
                [this] { openControlPanel(); });
        connect(dbus, &DBusNotificationBus::notificationClosed, this,
                [this](quint32 id) { m_notifier->forget(id); });
        bus = dbus;
    }
    m_notifier = std::make_unique<DesktopNotifier>(*bus);
    const TraySurface& tray = m_statusItem->surface();
    m_controlPanel->setTrayHostAvailable(tray.hostAvailable());
    connect(&tray, &TraySurface::hostAvailableChanged, this,
            [this](bool available) { m_controlPanel->setTrayHostAvailable(available); });
    // Queued: the monitor stores lastUpdated only after announcing it.
    connect(
        m_monitor.get(), &CodexProcessMonitor::lastUpdatedChanged, this,
        [this] { announceChanges(); }, Qt::QueuedConnection);
}

void AppModel::announceChanges() {
    m_notifier->apply(m_notificationPolicy->update(m_monitor->matches(),
                                                   m_monitor->lastError().has_value(),
                                                   m_notifications->enabled(), m_clock()));
    NotificationPolicy::Decision limits;
    for (LimitNotice& notice :
         m_limitNotices.update(m_monitor->accountLimits(), m_notifications->enabled(), m_clock()))
        limits.show.append({Announcement::Kind::finished, {}, notice.summary, notice.body});
    if (!limits.show.isEmpty())
        m_notifier->apply(limits);
}

AppModel::~AppModel() = default;

void AppModel::bootstrap(bool openControlPanel) {
    m_statusItem->configure(*m_monitor);
    m_monitor->start();
    if (!m_appVisibility->showDockIcon()) {
        if (m_appVisibility->desktopCanHide()) {
            m_runAfter(dockPolicyDelay, [this] {
                m_appVisibility->applyActivationPolicy(/*activate=*/false,
                                                       /*reportFailure=*/false);
            });
        } else {
            // Waiting cannot help here: the switch says so from the start.
            m_appVisibility->applyActivationPolicy(/*activate=*/false, /*reportFailure=*/true);
        }
    }
    if (openControlPanel) {
        QMetaObject::invokeMethod(
            this, [this] { m_controlPanel->show(); }, Qt::QueuedConnection);
    }
}

void AppModel::openControlPanel() {
    // The popover's job is done once the panel it pointed to is in front.
    m_statusItem->popover().hide();
    m_controlPanel->show();
}

void AppModel::refreshNow() {
    m_launchAtLogin->setStatus(m_launchAtLogin->systemStatus());
    m_monitor->refresh();
}

void AppModel::goToSession(qint64 pid) {
    m_statusItem->popover().hide();
    const GoResult result = m_places->goTo(pid);
    m_controlPanel->showGoResult(result);
    if (result.outcome != GoResult::Outcome::went)
        m_controlPanel->show();
}

void AppModel::goToSessionOfNotice(quint32 id) {
    if (const std::optional<qint64> pid =
            noticeTarget(m_notifier->sessionsOf(id), m_monitor->matches()))
        goToSession(*pid);
    else
        openControlPanel();
}

void AppModel::quit() {
    QCoreApplication::quit();
}

} // namespace brenvik
