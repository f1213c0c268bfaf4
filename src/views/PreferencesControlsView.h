#pragma once

#include "preferences/AppVisibilityController.h"
#include "preferences/LaunchAtLoginController.h"
#include "preferences/NotificationsController.h"

#include <QWidget>

namespace brenvik {

class CoalescedUpdate;
class StyledLabel;
class ToggleSwitch;

// "Launch at login", "Show in taskbar while running" and, where given,
// "Notify when a session finishes or needs you", each with its status line
// and, after a failure, the failure text in red. The switches show what
// the controllers publish, never just the click.
class PreferencesControlsView : public QWidget {
    Q_OBJECT

public:
    PreferencesControlsView(LaunchAtLoginController& launchAtLogin,
                            AppVisibilityController& appVisibility, QWidget* parent = nullptr,
                            NotificationsController* notifications = nullptr);

    [[nodiscard]] ToggleSwitch* launchAtLoginSwitch() const noexcept { return m_launchSwitch; }
    [[nodiscard]] ToggleSwitch* dockSwitch() const noexcept { return m_dockSwitch; }
    [[nodiscard]] StyledLabel* launchStatusLabel() const noexcept { return m_launchStatus; }
    [[nodiscard]] StyledLabel* launchErrorLabel() const noexcept { return m_launchError; }
    [[nodiscard]] StyledLabel* dockDescriptionLabel() const noexcept { return m_dockDescription; }
    [[nodiscard]] StyledLabel* dockErrorLabel() const noexcept { return m_dockError; }
    [[nodiscard]] ToggleSwitch* notifySwitch() const noexcept { return m_notifySwitch; }
    [[nodiscard]] int updateCount() const;

private:
    void updateFromControllers();

    LaunchAtLoginController& m_launchAtLogin;
    AppVisibilityController& m_appVisibility;
    CoalescedUpdate* m_updates;
    ToggleSwitch* m_launchSwitch;
    StyledLabel* m_launchStatus;
    StyledLabel* m_launchError;
    ToggleSwitch* m_dockSwitch;
    StyledLabel* m_dockDescription;
    StyledLabel* m_dockError;
    NotificationsController* m_notifications;
    ToggleSwitch* m_notifySwitch = nullptr;
    StyledLabel* m_notifyError = nullptr;
};

} // namespace brenvik
