#pragma once

#include "monitor/ProcessMonitoring.h"
#include "notify/LimitNoticePolicy.h"
#include "places/SessionPlaceTracker.h"
#include "views/ViewActions.h"

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>

namespace brenvik {

class ActivationPolicy;
class AppVisibilityController;
class ControlPanelController;
class DesktopNotifier;
class LaunchAtLoginController;
class NotificationBus;
class NotificationPolicy;
class NotificationsController;
class StatusItemController;
class StoredPreferences;
class TraySurface;

// The root object: makes the program's long-lived objects once, in order, and
// starts them. Everything reaches them through AppModel::shared().
class AppModel : public QObject, public ViewActions {
    Q_OBJECT

public:
    // How long after start-up the stored "Show in taskbar" = off is applied.
    static constexpr std::chrono::milliseconds dockPolicyDelay{150};

    using RunAfter = std::function<void(std::chrono::milliseconds, std::function<void()>)>;

    // What tests replace; an empty or null part means the real one.
    struct Parts {
        CodexProcessMonitor::ScanFunction scan;
        CodexProcessMonitor::WallClock clock;
        ActivationPolicy* activationPolicy = nullptr; // must outlive the model
        TraySurface* traySurface = nullptr;           // must outlive the model
        RunAfter runAfter;                            // delayed start-up steps
        NotificationBus* notificationBus = nullptr;   // must outlive the model
        QString settingsFile;                         // an INI file instead of the native one
        SessionPlaces::Finder placeFinder;            // with goTo: instead of tmux and X11
        SessionPlaceTracker::GoFunction goTo;
    };

    // The one instance, made on first use and kept until the application
    // object goes away.
    [[nodiscard]] static AppModel& shared();

    explicit AppModel(Parts parts, QObject* parent = nullptr);
    ~AppModel() override;

    [[nodiscard]] CodexProcessMonitor& monitor() noexcept { return *m_monitor; }
    [[nodiscard]] LaunchAtLoginController& launchAtLogin() noexcept { return *m_launchAtLogin; }
    [[nodiscard]] AppVisibilityController& appVisibility() noexcept { return *m_appVisibility; }
    [[nodiscard]] ControlPanelController& controlPanel() noexcept { return *m_controlPanel; }
    [[nodiscard]] StatusItemController& statusItem() noexcept { return *m_statusItem; }
    [[nodiscard]] NotificationsController& notifications() noexcept { return *m_notifications; }

    // Start-up, in order: draw the status item, start the monitor, schedule the
    // stored taskbar preference, and open the control panel on the next
    // event-loop turn (unless started at login, into the tray).
    void bootstrap(bool openControlPanel = true);

    void openControlPanel() override;
    void refreshNow() override;
    void quit() override;
    // Goes there; where it could not, or only selected its tmux pane, the
    // control panel comes forward and says why.
    void goToSession(qint64 pid) override;
    // A notice's default action: to the session it names that waits (else
    // the first still there); the control panel once none is.
    void goToSessionOfNotice(quint32 id);

private:
    // After every refresh: what changed, announced where the user wants it.
    void announceChanges();

    RunAfter m_runAfter;
    CodexProcessMonitor::WallClock m_clock;
    std::unique_ptr<CodexProcessMonitor> m_monitor;
    std::unique_ptr<SessionPlaceTracker> m_places;
    std::unique_ptr<LaunchAtLoginController> m_launchAtLogin;
    std::unique_ptr<StoredPreferences> m_preferences;
    std::unique_ptr<AppVisibilityController> m_appVisibility;
    std::unique_ptr<NotificationsController> m_notifications;
    std::unique_ptr<ControlPanelController> m_controlPanel;
    std::unique_ptr<StatusItemController> m_statusItem;
    std::unique_ptr<NotificationBus> m_ownNotificationBus;
    std::unique_ptr<DesktopNotifier> m_notifier;
    std::unique_ptr<NotificationPolicy> m_notificationPolicy;
    LimitNoticePolicy m_limitNotices;
};

} // namespace brenvik
