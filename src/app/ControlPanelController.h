#pragma once

#include "places/GoToSession.h"

#include <QSize>
#include <QWidget>
#include <memory>

namespace brenvik {

class AppVisibilityController;
class CodexProcessMonitor;
class ControlPanelView;
class LaunchAtLoginController;
class NotificationsController;
class SessionPlaceTracker;
class ViewActions;

// The control panel window "Brenvik": built on first use, kept for the life of
// the process (closing only hides it) and brought to the front on every show().
class ControlPanelController {
public:
    static constexpr QSize windowSize{420, 480};

    ControlPanelController(CodexProcessMonitor& monitor, LaunchAtLoginController& launchAtLogin,
                           AppVisibilityController& appVisibility, ViewActions& actions,
                           NotificationsController* notifications = nullptr,
                           const SessionPlaceTracker* places = nullptr);
    ~ControlPanelController();
    ControlPanelController(const ControlPanelController&) = delete;
    ControlPanelController& operator=(const ControlPanelController&) = delete;

    // Builds the window once (centred on the primary screen), then shows it,
    // raises it and activates it. The window is as large as its content, at
    // least its natural size, within the screen; it follows what the content
    // needs later, and scrolls only where the screen is too small.
    void show();

    // None until the first show().
    [[nodiscard]] QWidget* window() const noexcept { return m_window.get(); }

    // While no tray host is there, the panel says so and what to install.
    void setTrayHostAvailable(bool available);

    // What going to a session last said, under the list (kept until the
    // window is built).
    void showGoResult(const GoResult& result);
    [[nodiscard]] ControlPanelView* view() const noexcept { return m_view; }

private:
    void buildWindow();
    void fitWindow();

    CodexProcessMonitor& m_monitor;
    LaunchAtLoginController& m_launchAtLogin;
    AppVisibilityController& m_appVisibility;
    ViewActions& m_actions;
    NotificationsController* m_notifications;
    const SessionPlaceTracker* m_places;
    bool m_trayHostAvailable = true;
    GoResult m_goResult{GoResult::Outcome::went, {}};
    std::unique_ptr<QWidget> m_window;
    ControlPanelView* m_view = nullptr; // owned by m_window
    QSize m_naturalSize;
};

} // namespace brenvik
