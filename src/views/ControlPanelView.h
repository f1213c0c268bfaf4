#pragma once

#include "places/GoToSession.h"
#include "preferences/AppVisibilityController.h"
#include "preferences/LaunchAtLoginController.h"
#include "views/MonitorStatusView.h"

namespace brenvik {

class ElidingLabel;
class LastUpdatedLabel;
class NotificationsController;
class PreferencesControlsView;
class ProcessListSectionView;
class SessionPlaceTracker;
class StyledButton;

// The whole control panel, 420 × 480 or larger: header with the error line and the
// missing-tray line, preferences, the process list (each row goes to its session)
// with what going to a session last said, the last refresh time, "Refresh Now"
// (also the R key) and "Quit".
class ControlPanelView : public MonitorStatusView {
    Q_OBJECT

public:
    ControlPanelView(CodexProcessMonitor& monitor, LaunchAtLoginController& launchAtLogin,
                     AppVisibilityController& appVisibility, ViewActions& actions,
                     QWidget* parent = nullptr, NotificationsController* notifications = nullptr,
                     const SessionPlaceTracker* places = nullptr);

    static constexpr int kWidth = 420;
    static constexpr int kHeight = 480;

    // 420 × 480 where that holds everything, larger where a font, a scale or
    // more preferences need it: the list at its full three rows, and room
    // for the line that names waiting sessions.
    [[nodiscard]] QSize naturalSize() const;
    // What shows everything the panel holds now without scrolling: at least
    // `natural`, as wide as its widest line, as tall as its content at that width.
    [[nodiscard]] QSize wantedSize(const QSize& natural) const;

    [[nodiscard]] ElidingLabel* errorLine() const noexcept { return m_errorLine; }
    // Shown while `text` is not empty: no tray shows the icon. Widens the
    // panel's minimum where the line needs it.
    void setMissingTrayText(const QString& text);
    [[nodiscard]] ElidingLabel* missingTrayLine() const noexcept { return m_missingTrayLine; }
    [[nodiscard]] PreferencesControlsView* preferences() const noexcept { return m_preferences; }
    [[nodiscard]] ProcessListSectionView* processList() const noexcept { return m_processList; }
    // Under the list: why going to a session failed (in red), or where the
    // session is when only its pane could be selected; nothing once it went.
    void showGoResult(const GoResult& result);
    [[nodiscard]] ElidingLabel* goResultLine() const noexcept { return m_goResultLine; }
    [[nodiscard]] LastUpdatedLabel* lastUpdatedLabel() const noexcept { return m_lastUpdated; }
    [[nodiscard]] StyledButton* refreshButton() const noexcept { return m_refreshButton; }
    [[nodiscard]] StyledButton* quitButton() const noexcept { return m_quitButton; }

private:
    void updateFromMonitor() override;

    ElidingLabel* m_errorLine;
    ElidingLabel* m_missingTrayLine;
    PreferencesControlsView* m_preferences;
    ProcessListSectionView* m_processList;
    ElidingLabel* m_goResultLine;
    LastUpdatedLabel* m_lastUpdated;
    StyledButton* m_refreshButton;
    StyledButton* m_quitButton;
};

} // namespace brenvik
