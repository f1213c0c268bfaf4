#pragma once

#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>
#include <QStringView>
#include <QTimer>
#include <chrono>

namespace brenvik {

// Tells when a tray host is there to show an icon: a StatusNotifierItem
// watcher on the session bus, or an XEmbed system tray on X11. Qt settles on
// one tray protocol the first time any tray API is used and keeps it, so the
// icon must not be made before a host exists; autostart often starts us
// before the panel.
class TrayHostWatcher : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hostAvailable READ hostAvailable NOTIFY hostAvailableChanged)

public:
    static constexpr QStringView statusNotifierWatcherService = u"org.kde.StatusNotifierWatcher";
    // XEmbed trays announce themselves by owning a selection, which the bus
    // does not tell; looking costs a round trip. Often at first, while a
    // panel started with the session may still come up; rarely after that.
    static constexpr std::chrono::milliseconds xembedPollInterval{1500};
    static constexpr std::chrono::milliseconds xembedSlowPollInterval{10000};
    static constexpr std::chrono::milliseconds xembedFastPollPeriod{60000};

    // Looks at once, then keeps watching until a host appears.
    explicit TrayHostWatcher(QObject* parent = nullptr);
    ~TrayHostWatcher() override;

    // Once true, stays true: Qt follows a host that restarts by itself.
    [[nodiscard]] bool hostAvailable() const noexcept { return m_hostAvailable; }

Q_SIGNALS:
    void hostAvailableChanged(bool hostAvailable);

private:
    void check();
    void markAvailable();
    [[nodiscard]] bool statusNotifierWatcherRegistered() const;
    [[nodiscard]] bool xembedTrayOwned() const;

    bool m_hostAvailable = false;
    QDBusServiceWatcher m_busWatcher;
    QTimer m_xembedPoll;
    QElapsedTimer m_sinceStart;
};

} // namespace brenvik
