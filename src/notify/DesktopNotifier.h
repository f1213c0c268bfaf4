#pragma once

#include "notify/NotificationPolicy.h"

#include <QHash>
#include <QObject>
#include <functional>
#include <memory>

namespace brenvik {

// The notification server, as the notifier needs it. Calls never block and
// never fail loudly: without a server nothing is shown.
class NotificationBus {
public:
    virtual ~NotificationBus() = default;
    // Shows or replaces (replacesId > 0) a notification; `shown` gets its id,
    // or is never called when no server took it.
    virtual void notify(quint32 replacesId, const QString& summary, const QString& body,
                        std::function<void(quint32)> shown) = 0;
    virtual void close(quint32 id) = 0;
};

// The freedesktop.org notification server on the session bus, spoken to
// directly: app name "Brenvik", its icon and desktop entry, a default action
// (clicking the notification: go to its session) and "Open Control Panel".
class DBusNotificationBus : public QObject, public NotificationBus {
    Q_OBJECT

public:
    explicit DBusNotificationBus(QObject* parent = nullptr);

    void notify(quint32 replacesId, const QString& summary, const QString& body,
                std::function<void(quint32)> shown) override;
    void close(quint32 id) override;

Q_SIGNALS:
    void defaultActionInvoked(quint32 id);
    void openControlPanelInvoked(quint32 id);
    void notificationClosed(quint32 id);

private Q_SLOTS:
    void onActionInvoked(quint32 id, const QString& action);
    void onNotificationClosed(quint32 id, quint32 reason);
};

// Shows what the policy decides: one notification per session at a time
// (a newer one replaces it), a "waiting" one closed once nobody it names
// waits any more.
class DesktopNotifier {
public:
    explicit DesktopNotifier(NotificationBus& bus);

    void apply(const NotificationPolicy::Decision& decision);
    // The server closed it (expired, dismissed): nothing to replace or close.
    void forget(quint32 id);
    // The sessions the notification with this id names, in its order; none
    // for one it does not know (any more).
    [[nodiscard]] QList<qint64> sessionsOf(quint32 id) const;

private:
    struct Shown {
        Announcement::Kind kind;
        QList<qint64> waitingPIDs; // of a waiting notice, those still waiting
        QList<qint64> pids;        // all it names
    };

    NotificationBus& m_bus;
    QHash<qint64, quint32> m_idByPID;
    QHash<quint32, Shown> m_shown;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace brenvik
