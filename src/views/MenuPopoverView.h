#pragma once

#include "views/MonitorStatusView.h"

namespace brenvik {

class StyledButton;

// The popover: the status header and "Open Control Panel"; a click on the
// "Waiting for you" line goes to the session that waits. 300 points wide;
// its height follows the content.
class MenuPopoverView : public MonitorStatusView {
    Q_OBJECT

public:
    MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions, QWidget* parent = nullptr);

    static constexpr int kWidth = 300;

    [[nodiscard]] StyledButton* openControlPanelButton() const noexcept { return m_openButton; }

private:
    StyledButton* m_openButton;
};

} // namespace brenvik
