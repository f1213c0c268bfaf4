#include "notify/DesktopNotifier.h"

#include "detection/FailureLog.h"
#include "notify/NotifyLogging.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace brenvik {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
const QString kOpenControlPanel = QStringLiteral("open-control-panel");

} // namespace

DBusNotificationBus::DBusNotificationBus(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Signals of whichever server owns the name now or later.
    bus.connect(kService, kPath, kInterface, QStringLiteral("ActionInvoked"), this,
                SLOT(onActionInvoked(quint32, QString)));
    bus.connect(kService, kPath, kInterface, QStringLiteral("NotificationClosed"), this,
                SLOT(onNotificationClosed(quint32, quint32)));
}

void DBusNotificationBus::notify(quint32 replacesId, const QString& summary, const QString& body,
                                 std::function<void(quint32)> shown) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("brenvik")},
                            {QStringLiteral("category"), QStringLiteral("im.received")}};
    call << QStringLiteral("Brenvik") << replacesId << QStringLiteral("brenvik") << summary << body
         << QStringList{QStringLiteral("default"), tr("Go to the session"), kOpenControlPanel,
                        tr("Open Control Panel")}
         << hints << qint32(-1);
    // Asynchronous: a missing server costs one failed call, nothing waits.
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [shown = std::move(shown)](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<quint32> reply = *finished;
                if (reply.isError())
                    logFailureOnce(
                        lcNotify(), QStringLiteral("notify:") + reply.error().name(),
                        QStringLiteral("the notification server did not show a notice: %1")
                            .arg(reply.error().message()));
                else if (shown)
                    shown(reply.value());
                finished->deleteLater();
            });
}

void DBusNotificationBus::close(quint32 id) {
    QDBusConnection::sessionBus().asyncCall(
        QDBusMessage::createMethodCall(kService, kPath, kInterface,
                                       QStringLiteral("CloseNotification"))
        << id);
}

void DBusNotificationBus::onActionInvoked(quint32 id, const QString& action) {
    if (action == u"default")
        Q_EMIT defaultActionInvoked(id);
    else if (action == kOpenControlPanel)
        Q_EMIT openControlPanelInvoked(id);
}

void DBusNotificationBus::onNotificationClosed(quint32 id, quint32) {
    Q_EMIT notificationClosed(id);
}

DesktopNotifier::DesktopNotifier(NotificationBus& bus)
    : m_bus(bus) {}

void DesktopNotifier::apply(const NotificationPolicy::Decision& decision) {
    for (const qint64 pid : decision.stoppedWaiting) {
        const auto id = m_idByPID.constFind(pid);
        if (id == m_idByPID.cend())
            continue;
        const auto shown = m_shown.find(*id);
        if (shown == m_shown.end() || shown->kind != Announcement::Kind::waiting)
            continue;
        shown->waitingPIDs.removeAll(pid);
        if (shown->waitingPIDs.isEmpty()) {
            m_bus.close(*id);
            forget(*id);
        }
    }
    for (const Announcement& notice : decision.show) {
        // One notification per session: the newest replaces what it had.
        quint32 replaces = 0;
        for (const qint64 pid : notice.pids) {
            if (const quint32 id = m_idByPID.value(pid); id != 0) {
                if (replaces == 0)
                    replaces = id;
                else if (id != replaces)
                    m_bus.close(id);
            }
        }
        m_bus.notify(replaces, notice.summary, notice.body,
                     [this, alive = std::weak_ptr<bool>(m_alive), notice, replaces](quint32 id) {
                         if (alive.expired())
                             return;
                         if (replaces != 0 && replaces != id)
                             forget(replaces);
                         for (const qint64 pid : notice.pids) {
                             if (const quint32 old = m_idByPID.value(pid); old != 0 && old != id)
                                 forget(old);
                             m_idByPID.insert(pid, id);
                         }
                         m_shown.insert(id, Shown{notice.kind,
                                                  notice.kind == Announcement::Kind::waiting
                                                      ? notice.pids
                                                      : QList<qint64>(),
                                                  notice.pids});
                     });
    }
}

QList<qint64> DesktopNotifier::sessionsOf(quint32 id) const {
    return m_shown.value(id).pids;
}

void DesktopNotifier::forget(quint32 id) {
    m_shown.remove(id);
    m_idByPID.removeIf(
        [id](const std::pair<const qint64&, quint32&>& entry) { return entry.second == id; });
}

} // namespace brenvik
