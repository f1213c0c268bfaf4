#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ViewActions.h"

#include <QWidget>

namespace brenvik {

class CoalescedUpdate;
class StyledButton;
class StatusHeaderView;

// The popover: the status header and "Open Control Panel". 300 points wide;
// its height follows the content.
class MenuPopoverView : public QWidget {
    Q_OBJECT

public:
    MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions, QWidget* parent = nullptr);

    static constexpr int kWidth = 300;

    [[nodiscard]] StatusHeaderView* header() const noexcept { return m_header; }
    [[nodiscard]] StyledButton* openControlPanelButton() const noexcept { return m_openButton; }
    [[nodiscard]] int updateCount() const;

private:
    void updateFromMonitor();

    CodexProcessMonitor& m_monitor;
    ViewActions& m_actions;
    CoalescedUpdate* m_updates;
    StatusHeaderView* m_header;
    StyledButton* m_openButton;
};

} // namespace brenvik
