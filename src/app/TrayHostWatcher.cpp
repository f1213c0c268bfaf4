#include "app/TrayHostWatcher.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>
#include <cstdlib>
#include <xcb/xcb.h>

namespace brenvik {

TrayHostWatcher::TrayHostWatcher(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        m_busWatcher.setConnection(bus);
        m_busWatcher.setWatchMode(QDBusServiceWatcher::WatchForRegistration |
                                  QDBusServiceWatcher::WatchForUnregistration);
        m_busWatcher.addWatchedService(statusNotifierWatcherService.toString());
        // A watcher that appears (or restarts) may have its host already.
        connect(&m_busWatcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
            m_statusNotifierWatcherPresent = true;
            askWatcherForHost();
        });
        connect(&m_busWatcher, &QDBusServiceWatcher::serviceUnregistered, this,
                [this] { m_statusNotifierWatcherPresent = false; });
        m_statusNotifierWatcherPresent =
            bus.interface() &&
            bus.interface()->isServiceRegistered(statusNotifierWatcherService.toString()).value();
        // Subscribed before the first question, so a host registering in
        // between is not missed.
        bus.connect(statusNotifierWatcherService.toString(), statusNotifierWatcherPath.toString(),
                    statusNotifierWatcherService.toString(),
                    QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(markAvailable()));
        askWatcherForHost();
    }
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (x11 && x11->connection()) {
        m_sinceStart.start();
        m_xembedPoll.setInterval(xembedPollInterval);
        m_xembedPoll.setTimerType(Qt::CoarseTimer);
        connect(&m_xembedPoll, &QTimer::timeout, this, [this] {
            check();
            if (m_xembedPoll.isActive() && m_sinceStart.elapsed() > xembedFastPollPeriod.count())
                m_xembedPoll.setInterval(xembedSlowPollInterval);
        });
        m_xembedPoll.start();
    }
    check();
}

TrayHostWatcher::~TrayHostWatcher() = default;

void TrayHostWatcher::check() {
    if (!xembedTrayOwned()) {
        m_xembedSeen.invalidate();
        return;
    }
    // Beside a StatusNotifierItem watcher, an XEmbed tray is often a bridge
    // or the same panel's, whose host registers moments later: give that host
    // the time to come, or Qt settles on XEmbed.
    if (!m_xembedSeen.isValid())
        m_xembedSeen.start();
    if (!m_statusNotifierWatcherPresent || m_xembedSeen.elapsed() >= xembedGracePeriod.count())
        markAvailable();
}

void TrayHostWatcher::markAvailable() {
    if (m_hostAvailable)
        return;
    m_hostAvailable = true;
    m_xembedPoll.stop();
    m_busWatcher.setWatchedServices({});
    QDBusConnection::sessionBus().disconnect(
        statusNotifierWatcherService.toString(), statusNotifierWatcherPath.toString(),
        statusNotifierWatcherService.toString(), QStringLiteral("StatusNotifierHostRegistered"),
        this, SLOT(markAvailable()));
    Q_EMIT hostAvailableChanged(true);
}

void TrayHostWatcher::askWatcherForHost() {
    if (m_hostAvailable)
        return;
    QDBusMessage get = QDBusMessage::createMethodCall(
        statusNotifierWatcherService.toString(), statusNotifierWatcherPath.toString(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << statusNotifierWatcherService.toString()
        << QStringLiteral("IsStatusNotifierHostRegistered");
    // Asking must not start a watcher that the desktop did not.
    get.setAutoStartService(false);
    auto* pending = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(get), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                const QDBusPendingReply<QDBusVariant> reply = *call;
                if (!reply.isError() && reply.value().variant().toBool())
                    markAvailable();
            });
}

bool TrayHostWatcher::xembedTrayOwned() const {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return false;
    // One tray selection per X screen: _NET_SYSTEM_TRAY_S0, _S1, …
    const int screens = xcb_setup_roots_length(xcb_get_setup(connection));
    for (int screen = 0; screen < screens; ++screen) {
        const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screen);
        xcb_intern_atom_reply_t* atom = xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData()),
            nullptr);
        if (!atom)
            continue;
        xcb_get_selection_owner_reply_t* owner = xcb_get_selection_owner_reply(
            connection, xcb_get_selection_owner(connection, atom->atom), nullptr);
        const bool owned = owner && owner->owner != XCB_WINDOW_NONE;
        std::free(owner);
        std::free(atom);
        if (owned)
            return true;
    }
    return false;
}

} // namespace brenvik
