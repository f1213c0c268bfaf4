#pragma once

#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>
#include <QStringView>
#include <QTimer>
#include <chrono>

namespace brenvik {

// Tells when a tray host is there to show an icon: a StatusNotifierItem host
// registered with the watcher on the session bus, or an XEmbed system tray on
// X11. Qt settles on one tray protocol the first time any tray API is used and
// keeps it, asking the watcher whether a host is registered; so the icon must
// not be made before a host exists. Autostart often starts us before the
// panel, and on KDE the watcher comes up before the panel's host.
class TrayHostWatcher : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hostAvailable READ hostAvailable NOTIFY hostAvailableChanged)

public:
    static constexpr QStringView statusNotifierWatcherService = u"org.kde.StatusNotifierWatcher";
    static constexpr QStringView statusNotifierWatcherPath = u"/StatusNotifierWatcher";
    // XEmbed trays announce themselves by owning a selection, which the bus
    // does not tell; looking costs a round trip. Often at first, while a
    // panel started with the session may still come up; rarely after that.
    static constexpr std::chrono::milliseconds xembedPollInterval{1500};
    static constexpr std::chrono::milliseconds xembedSlowPollInterval{10000};
    static constexpr std::chrono::milliseconds xembedFastPollPeriod{60000};
    // How long an XEmbed tray waits while a StatusNotifierItem watcher has no
    // host yet.
    static constexpr std::chrono::milliseconds xembedGracePeriod{3000};

    // Looks at once, then keeps watching until a host appears.
    explicit TrayHostWatcher(QObject* parent = nullptr);
    ~TrayHostWatcher() override;

    // Once true, stays true: Qt follows a host that restarts by itself.
    [[nodiscard]] bool hostAvailable() const noexcept { return m_hostAvailable; }

Q_SIGNALS:
    void hostAvailableChanged(bool hostAvailable);

private Q_SLOTS:
    void markAvailable();

private:
    void check();
    // Asks the watcher, without blocking, whether a host is registered. A
    // failed read counts as "not yet", as it does for Qt: the host's
    // registration signal, or a new watcher, asks again.
    void askWatcherForHost();
    [[nodiscard]] bool xembedTrayOwned() const;

    bool m_hostAvailable = false;
    bool m_statusNotifierWatcherPresent = false;
    QDBusServiceWatcher m_busWatcher;
    QTimer m_xembedPoll;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_xembedSeen; // since an XEmbed tray was first found
};

} // namespace brenvik
